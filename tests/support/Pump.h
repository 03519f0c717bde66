#pragma once

#include <functional>

#include "MemoryTransport.h"
#include "phone/PhoneLink.h"

namespace test {

/// Moves bytes between a phone and a head unit's transport until `done`; false if the link ended before, or
/// nothing has come for so long that nothing will.
bool pump(phone::PhoneLink* phone, MemoryTransport* transport, const std::function<bool()>& done);

}  // namespace test
