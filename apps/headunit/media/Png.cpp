#include "headunit/media/Png.h"

#include <png.h>

#include "headunit/OutputFile.h"

namespace headunit {
namespace {

std::string toRgb(const Bitmap& bitmap) {
  std::string rgb;
  rgb.reserve(bitmap.pixels.size() * 3);
  for (const std::uint32_t pixel : bitmap.pixels) {
    for (const int shift : {16, 8, 0}) rgb += static_cast<char>(pixel >> shift & 0xFF);
  }
  return rgb;
}

}  // namespace

std::string encodePng(const Bitmap& bitmap) {
  if (bitmap.pixels.empty()) return {};
  const std::string rgb = toRgb(bitmap);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(bitmap.size.width);
  image.height = static_cast<png_uint_32>(bitmap.size.height);
  image.format = PNG_FORMAT_RGB;
  // Asked for the real size, the library would compress it all once more.
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::string bytes(size, '\0');
  if (png_image_write_to_memory(&image, bytes.data(), &size, 0, rgb.data(), 0, nullptr) == 0) return {};
  bytes.resize(size);
  return bytes;
}

bool writePng(const Bitmap& bitmap, const std::string& path, std::string* error) {
  const std::string bytes = encodePng(bitmap);
  if (!bytes.empty()) return writeFile(path, bytes, error);
  *error = "cannot write " + path + ": there is nothing to write";
  return false;
}

}  // namespace headunit
