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
  // The encoder may still hold the picture of the call before.
  if (!result_) result_ = makeYuvFrame(width_, height_);
  return result_ && av_frame_make_writable(result_.get()) >= 0;
}

AVFrame* PictureFitter::fit(const AVFrame& source, AVRational aspect) {
  if (source.width <= 0 || source.height <= 0 || !prepare()) return nullptr;
  const Area area = inside(width_, height_, proportionOf(source, aspect));
  scaler_.reset(sws_getCachedContext(scaler_.release(), source.width, source.height,
                                     static_cast<AVPixelFormat>(source.format), area.width, area.height,
                                     AV_PIX_FMT_YUV420P, SWS_BICUBIC, nullptr, nullptr, nullptr));
  if (!scaler_) return nullptr;
  setRanges(scaler_.get(), source);
  fillBlack(result_.get());
  std::array<std::uint8_t*, 3> planes{};
  for (std::size_t i = 0; i < 3; ++i) {
    const int shift = i == 0 ? 0 : 1;
    planes[i] = result_->data[i] + (area.y >> shift) * result_->linesize[i] + (area.x >> shift);
  }
  const int rows = sws_scale(scaler_.get(), source.data, source.linesize, 0, source.height, planes.data(),
                             result_->linesize);
  return rows == area.height ? result_.get() : nullptr;
}

}  // namespace phone
