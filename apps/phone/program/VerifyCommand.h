#ifndef PHONE_PROGRAM_VERIFYCOMMAND_H
#define PHONE_PROGRAM_VERIFYCOMMAND_H

namespace phone {

/// `vantry-phone verify`: runs the checks against a head unit and reports. `argv[0]` is the word "verify".
/// Returns the exit status: 0 if no check failed, 1 for wrong usage, 2 if one failed or the run was broken
/// off.
int runVerify(int argc, char** argv);

}  // namespace phone

#endif
