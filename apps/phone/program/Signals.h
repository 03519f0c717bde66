#ifndef PHONE_PROGRAM_SIGNALS_H
#define PHONE_PROGRAM_SIGNALS_H

#include "phone/Socket.h"

namespace phone {

/// From now on Ctrl-C, and a request to end or a terminal that goes away, raise what is returned, which lives
/// as long as the program. A signal that whoever started the program wants ignored stays so.
Wake* wakeOnSignals();

}  // namespace phone

#endif
