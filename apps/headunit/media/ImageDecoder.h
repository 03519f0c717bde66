#pragma once

#include <string>

#include "headunit/Bitmap.h"

namespace headunit {

/// The picture in the bytes of a PNG or JPEG file. Null if they are none, are damaged so that nothing can be
/// made of them, or hold a picture of more than 16 million pixels. Any thread.
Image decodeImage(const std::string& bytes);

}  // namespace headunit
