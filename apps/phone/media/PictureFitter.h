#pragma once

#include "phone/media/Ffmpeg.h"

namespace phone {

/// Brings pictures of any size and pixel format to one size in YUV 4:2:0, with their proportions kept and
/// black bars where they leave room, and turns them.
class PictureFitter {
 public:
  /// `quarterTurns` of 90 degrees, clockwise: 0 to 3.
  PictureFitter(int width, int height, int quarterTurns)
      : width_(width), height_(height), quarterTurns_(quarterTurns) {}

  /// Fits `source`; `aspect` is the shape of the stream's pixels where the frame itself tells none (0/1 if
  /// unknown). The result belongs to the fitter and stays until the next call; null if the picture's format
  /// cannot be converted.
  [[nodiscard]] AVFrame* fit(const AVFrame& source, AVRational aspect);

 private:
  bool prepare();
  void turnPlane(std::size_t plane);

  int width_;
  int height_;
  int quarterTurns_;
  ScalerPtr scaler_;
  FramePtr unturned_;  // what is fitted, where that is to be turned
  FramePtr result_;
};

}  // namespace phone
