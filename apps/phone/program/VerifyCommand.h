#ifndef PHONE_PROGRAM_VERIFYCOMMAND_H
#define PHONE_PROGRAM_VERIFYCOMMAND_H

#include "phone/Socket.h"

namespace phone {

/// `vantry-phone verify`: runs the checks against a head unit and reports. `argv[0]` is the word "verify".
/// `wake` breaks it off. Returns the exit status: 0 if no check failed, 1 for wrong usage, 2 if one failed or
/// the run was broken off.
int runVerify(int argc, char** argv, Wake* wake);

}  // namespace phone

#endif
