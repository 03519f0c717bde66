#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace phone {

/// Packed 8-bit red, green, blue; rows follow one another without padding.
struct RgbPicture {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> rgb;

  int stride() const { return width * 3; }
};

/// A PNG file's bytes for `width` x `height` packed RGB pixels; empty if the picture cannot be encoded.
std::vector<std::uint8_t> encodePng(const std::uint8_t* rgb, int width, int height);

/// Reads a picture file of any kind that FFmpeg decodes. Nothing on failure, with a whole sentence for the
/// user in `*error`.
std::optional<RgbPicture> readPicture(const std::string& path, std::string* error);

}  // namespace phone
