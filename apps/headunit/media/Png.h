#pragma once

#include <string>

#include "headunit/Picture.h"

namespace headunit {

/// Writes a picture as a PNG file of the picture's own size. Returns false, with the reason in `*error`, if
/// it cannot be written whole; what was there before is then still there.
bool writePng(const Picture& picture, const std::string& path, std::string* error);

}  // namespace headunit
