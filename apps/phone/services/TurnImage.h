#ifndef PHONE_SERVICES_TURNIMAGE_H
#define PHONE_SERVICES_TURNIMAGE_H

#include "phone/Bytes.h"

namespace phone {

/// A PNG with an arrow that comes from below and leaves at `angle` degrees to the right of straight on.
/// Empty if the size is no picture's.
Bytes drawTurn(int angle, int width, int height);

}  // namespace phone

#endif
