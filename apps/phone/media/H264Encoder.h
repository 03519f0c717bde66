#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "phone/media/Ffmpeg.h"
#include "phone/media/VideoSource.h"

namespace phone {

/// Encodes pictures to H.264 without delay: each gives its access unit at once, in order, with no B frames.
/// The parameter sets are given by `codecConfig` alone; key frames come first and then every two seconds.
class H264Encoder {
 public:
  /// Null on failure (an odd or absurd size or rate, no libx264), with a whole sentence in `*error`.
  static std::unique_ptr<H264Encoder> create(const VideoOptions& options, std::string* error);

  const std::vector<std::uint8_t>& codecConfig() const { return config_; }

  /// Encodes `frame` (YUV 4:2:0 of the options' size) as number 0, 1, 2 … of the stream, which gives it its
  /// time. False if the encoder fails, which does not pass.
  [[nodiscard]] bool encode(AVFrame* frame, AccessUnit* unit);

 private:
  H264Encoder(CodecPtr codec, int fps);

  CodecPtr codec_;
  PacketPtr packet_;
  int fps_;
  std::int64_t count_ = 0;
  std::vector<std::uint8_t> config_;
};

}  // namespace phone
