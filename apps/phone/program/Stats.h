#ifndef PHONE_PROGRAM_STATS_H
#define PHONE_PROGRAM_STATS_H

#include <string>

#include "phone/PhoneSession.h"

namespace phone {

/// The figures of one link as JSON text. Times are in milliseconds; what never happened is null. `session` is
/// null if no link came about, and `end` tells how it ended, or why there was none.
std::string statsJson(const PhoneSession* session, const LinkEnd& end, int exitStatus);

}  // namespace phone

#endif
