#pragma once

#include "phone/media/Ffmpeg.h"

namespace phone {

/// Brings pictures of any size and pixel format to one size in YUV 4:2:0, with their proportions kept and
/// black bars where they leave room.
class PictureFitter {
 public:
  PictureFitter(int width, int height) : width_(width), height_(height) {}

  /// Fits `source`; `aspect` is the shape of the stream's pixels where the frame itself tells none (0/1 if
  /// unknown). The result belongs to the fitter and stays until the next call; null if the picture's format
  /// cannot be converted.
  [[nodiscard]] AVFrame* fit(const AVFrame& source, AVRational aspect);

 private:
  bool prepare();

  int width_;
  int height_;
  ScalerPtr scaler_;
  FramePtr result_;
};

}  // namespace phone
