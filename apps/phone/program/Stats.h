#ifndef PHONE_PROGRAM_STATS_H
#define PHONE_PROGRAM_STATS_H

#include <string>

#include "phone/PhoneSession.h"

namespace phone {

/// The figures of one link as JSON text. Times are in milliseconds; what never happened is null.
std::string statsJson(const PhoneSession& session, int exitStatus);

}  // namespace phone

#endif
