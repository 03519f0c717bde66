#pragma once

#include <string>

#include "headunit/Bitmap.h"

namespace headunit {

/// The bytes of a PNG file with an opaque drawing; empty if there is nothing in it.
std::string encodePng(const Bitmap& bitmap);

/// Writes it to a file, as writeFile does. Returns false, with the reason in `*error`, if it cannot be
/// written whole.
bool writePng(const Bitmap& bitmap, const std::string& path, std::string* error);

}  // namespace headunit
