#include "headunit/media/ScreenImage.h"

#include <algorithm>

#include "headunit/media/Png.h"
#include "headunit/strip/StripPainter.h"

extern "C" {
#include <libswscale/swscale.h>
}

namespace headunit {
namespace {

constexpr std::uint32_t BLACK = 0xFF000000;

std::size_t pixelsOf(Size size) {
  return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
}

// What is shown of a plane that has `share` of the picture's columns and rows.
const std::uint8_t* startOf(const Picture::Plane& plane, const Rect& shown, int share) {
  return plane.data + static_cast<std::ptrdiff_t>(shown.y / share) * plane.stride + shown.x / share;
}

Bitmap toRgb(const Picture& picture, const Rect& shown, Size size) {
  Bitmap bitmap{size, std::vector<std::uint32_t>(pixelsOf(size))};
  SwsContext* const scaler =
      sws_getContext(shown.width, shown.height, AV_PIX_FMT_YUV420P, size.width, size.height, AV_PIX_FMT_RGB32,
                     SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr);
  if (scaler == nullptr) return bitmap;  // no memory for it
  const int* const from = sws_getCoefficients(picture.bt709 ? SWS_CS_ITU709 : SWS_CS_ITU601);
  sws_setColorspaceDetails(scaler, from, picture.fullRange ? 1 : 0, sws_getCoefficients(SWS_CS_DEFAULT), 1, 0,
                           1 << 16, 1 << 16);
  const std::uint8_t* const planes[] = {startOf(picture.planes[0], shown, 1),
                                        startOf(picture.planes[1], shown, 2),
                                        startOf(picture.planes[2], shown, 2)};
  const int strides[] = {picture.planes[0].stride, picture.planes[1].stride, picture.planes[2].stride};
  std::uint8_t* const target[] = {reinterpret_cast<std::uint8_t*>(bitmap.pixels.data())};
  const int stride = size.width * static_cast<int>(sizeof(std::uint32_t));
  sws_scale(scaler, planes, strides, 0, shown.height, target, &stride);
  sws_freeContext(scaler);
  return bitmap;
}

void place(const Bitmap& part, const Rect& area, Bitmap* whole) {
  for (int y = 0; y < part.size.height; ++y) {
    const auto from = part.pixels.begin() + static_cast<std::ptrdiff_t>(y) * part.size.width;
    const auto to = static_cast<std::ptrdiff_t>(area.y + y) * whole->size.width + area.x;
    std::copy(from, from + part.size.width, whole->pixels.begin() + to);
  }
}

}  // namespace

Bitmap drawScreen(const ScreenLayout& layout, const Screen::Shown& shown, Size margins, TimePoint now) {
  Bitmap whole{layout.size, std::vector<std::uint32_t>(pixelsOf(layout.size), BLACK)};
  if (shown.picture) {
    const Size picture{shown.picture->width, shown.picture->height};
    const PictureView view(picture, margins, {layout.picture.width, layout.picture.height},
                           {layout.picture.x, layout.picture.y});
    const Size size{view.area().width, view.area().height};
    if (size.width > 0 && size.height > 0)
      place(toRgb(*shown.picture, view.shown(), size), view.area(), &whole);
  }
  place(drawStrip(shown.cluster, {layout.strip.width, layout.strip.height}, now).bitmap, layout.strip,
        &whole);
  return whole;
}

std::string Screenshots::png() const {
  const Screen::Shown shown = screen_->showsNow();
  return encodePng(drawScreen(shown.layout, shown, screen_->margins(), Clock::now()));
}

}  // namespace headunit
