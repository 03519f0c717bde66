#ifndef PHONE_PROGRAM_SCENARIOCOMMAND_H
#define PHONE_PROGRAM_SCENARIOCOMMAND_H

#include "phone/Socket.h"

namespace phone {

/// Whether the command line holds --scenario or --list-scenarios.
bool asksForScenario(int argc, char** argv);

/// Plays a scenario against a head unit, or lists those that come with the program. `wake`
/// interrupts it. Returns the exit status: 0 if it went as written, 1 for wrong usage, 3 if an expectation
/// failed or the scenario was interrupted.
int runScenario(int argc, char** argv, Wake* wake);

}  // namespace phone

#endif
