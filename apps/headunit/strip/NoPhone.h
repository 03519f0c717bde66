#pragma once

#include <string>

#include "headunit/Bitmap.h"

namespace headunit {

/// What stands in the picture's place while there is no phone. `place`: where one is expected, "on
/// HOST:PORT", or nothing. Opaque; `size` may be any, and without a pixel there is nothing in the bitmap. Any
/// thread.
Bitmap drawNoPhone(const std::string& place, Size size);

}  // namespace headunit
