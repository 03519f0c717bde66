// Runs the README's host as far as it goes without credentials: it builds a receiver and refuses to start the
// link.

#include "host.h"

int drive(const Credentials& own, int socket);

int main() { return drive(Credentials{}, -1) == 2 ? 0 : 1; }
