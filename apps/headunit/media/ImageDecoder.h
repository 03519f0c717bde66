#pragma once

#include <string>

#include "headunit/Bitmap.h"

namespace headunit {

/// The picture in the bytes of a PNG or JPEG file, made smaller if need be so that neither side exceeds 512
/// pixels, which is more than the cluster has room for. Null if the bytes are no picture, are damaged so that
/// nothing can be made of them, or hold more than 16 million pixels. Any thread.
Image decodeImage(const std::string& bytes);

}  // namespace headunit
