#include "headunit/media/Png.h"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

extern "C" {
#include <libswscale/swscale.h>
}

namespace headunit {
namespace {

constexpr int BYTES_PER_PIXEL = 3;

std::vector<std::uint8_t> toRgb(const Picture& picture) {
  SwsContext* const scaler = sws_getContext(
      picture.width, picture.height, AV_PIX_FMT_YUV420P, picture.width, picture.height, AV_PIX_FMT_RGB24,
      SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr);
  const int* const from = sws_getCoefficients(picture.bt709 ? SWS_CS_ITU709 : SWS_CS_ITU601);
  sws_setColorspaceDetails(scaler, from, picture.fullRange ? 1 : 0, sws_getCoefficients(SWS_CS_DEFAULT), 1, 0,
                           1 << 16, 1 << 16);
  const int stride = picture.width * BYTES_PER_PIXEL;
  std::vector<std::uint8_t> rgb(static_cast<std::size_t>(stride) * static_cast<std::size_t>(picture.height));
  const std::uint8_t* const planes[] = {picture.planes[0].data, picture.planes[1].data,
                                        picture.planes[2].data};
  const int strides[] = {picture.planes[0].stride, picture.planes[1].stride, picture.planes[2].stride};
  std::uint8_t* const target[] = {rgb.data()};
  sws_scale(scaler, planes, strides, 0, picture.height, target, &stride);
  sws_freeContext(scaler);
  return rgb;
}

}  // namespace

bool writePng(const Picture& picture, const std::string& path, std::string* error) {
  const std::vector<std::uint8_t> rgb = toRgb(picture);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.width);
  image.height = static_cast<png_uint_32>(picture.height);
  image.format = PNG_FORMAT_RGB;
  const std::string unfinished = path + ".part";
  errno = 0;
  const bool written = png_image_write_to_file(&image, unfinished.c_str(), 0, rgb.data(), 0, nullptr) != 0 &&
                       std::rename(unfinished.c_str(), path.c_str()) == 0;
  if (!written) {
    *error = "cannot write " + path + ": " + (errno != 0 ? std::strerror(errno) : image.message);
    std::remove(unfinished.c_str());
  }
  return written;
}

}  // namespace headunit
