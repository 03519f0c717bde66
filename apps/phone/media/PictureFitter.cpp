#include "phone/media/PictureFitter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace phone {
namespace {

struct Area {
  int x, y, width, height;
};

// Even numbers throughout, since two pixels share their colour.
Area inside(int width, int height, double proportion) {
  const double fitWidth = std::min<double>(width, height * proportion);
  const auto even = [](double length) { return std::max(2, 2 * static_cast<int>(std::lround(length / 2))); };
  const int w = std::min(width, even(fitWidth));
  const int h = std::min(height, even(fitWidth / proportion));
  return {(width - w) / 4 * 2, (height - h) / 4 * 2, w, h};
}

double proportionOf(const AVFrame& frame, AVRational aspect) {
  const AVRational pixel = frame.sample_aspect_ratio.num > 0 ? frame.sample_aspect_ratio : aspect;
  const double stretch = pixel.num > 0 && pixel.den > 0 ? av_q2d(pixel) : 1.0;
  return std::clamp(stretch * frame.width / frame.height, 1.0 / 64, 64.0);
}

void fillBlack(AVFrame* frame) {
  std::memset(frame->data[0], 16, static_cast<std::size_t>(frame->linesize[0] * frame->height));
  for (int plane : {1, 2}) {
    std::memset(frame->data[plane], 128,
                static_cast<std::size_t>(frame->linesize[plane] * frame->height / 2));
  }
}

// Pictures from cameras and JPEG files use all 256 levels, video 16 to 235.
void setRanges(SwsContext* scaler, const AVFrame& source) {
  const bool isRgb =
      (av_pix_fmt_desc_get(static_cast<AVPixelFormat>(source.format))->flags & AV_PIX_FMT_FLAG_RGB) != 0;
  const bool full = isRgb || source.color_range == AVCOL_RANGE_JPEG;
  const int matrix = source.colorspace == AVCOL_SPC_UNSPECIFIED ? SWS_CS_DEFAULT : source.colorspace;
  const int* to = sws_getCoefficients(SWS_CS_DEFAULT);
  sws_setColorspaceDetails(scaler, sws_getCoefficients(matrix), full ? 1 : 0, to, 0, 0, 1 << 16, 1 << 16);
}

}  // namespace

bool PictureFitter::prepare() {
  const bool lies = quarterTurns_ % 2 != 0;
  if (quarterTurns_ != 0 && !unturned_) {
    unturned_ = makeYuvFrame(lies ? height_ : width_, lies ? width_ : height_);
  }
  if (!result_) result_ = makeYuvFrame(width_, height_);
  // The encoder may still hold the picture of the call before.
  return result_ && av_frame_make_writable(result_.get()) >= 0 && (quarterTurns_ == 0 || unturned_);
}

void PictureFitter::turnPlane(std::size_t plane) {
  const int width = plane == 0 ? width_ : width_ / 2;
  const int height = plane == 0 ? height_ : height_ / 2;
  const std::ptrdiff_t stride = unturned_->linesize[plane];
  const std::uint8_t* const from = unturned_->data[plane];
  for (int y = 0; y < height; ++y) {
    // Where the row's first pixel comes from, and how far it is from there to the next one's.
    const std::uint8_t* at = from + (height - 1 - y) * stride + width - 1;
    std::ptrdiff_t step = -1;
    if (quarterTurns_ == 1) {
      at = from + (width - 1) * stride + y;
      step = -stride;
    } else if (quarterTurns_ == 3) {
      at = from + height - 1 - y;
      step = stride;
    }
    std::uint8_t* to = result_->data[plane] + y * std::ptrdiff_t{result_->linesize[plane]};
    for (int x = 0; x < width; ++x) to[x] = at[x * step];
  }
}

AVFrame* PictureFitter::fit(const AVFrame& source, AVRational aspect) {
  if (source.width <= 0 || source.height <= 0 || !prepare()) return nullptr;
  AVFrame* const fitted = quarterTurns_ == 0 ? result_.get() : unturned_.get();
  const Area area = inside(fitted->width, fitted->height, proportionOf(source, aspect));
  scaler_.reset(sws_getCachedContext(scaler_.release(), source.width, source.height,
                                     static_cast<AVPixelFormat>(source.format), area.width, area.height,
                                     AV_PIX_FMT_YUV420P, SWS_BICUBIC, nullptr, nullptr, nullptr));
  if (!scaler_) return nullptr;
  setRanges(scaler_.get(), source);
  fillBlack(fitted);
  std::array<std::uint8_t*, 3> planes{};
  for (std::size_t i = 0; i < 3; ++i) {
    const int shift = i == 0 ? 0 : 1;
    planes[i] = fitted->data[i] + (area.y >> shift) * fitted->linesize[i] + (area.x >> shift);
  }
  const int rows = sws_scale(scaler_.get(), source.data, source.linesize, 0, source.height, planes.data(),
                             fitted->linesize);
  if (rows != area.height) return nullptr;
  for (std::size_t plane = 0; quarterTurns_ != 0 && plane < 3; ++plane) turnPlane(plane);
  return result_.get();
}

}  // namespace phone
