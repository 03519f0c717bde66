#pragma once

#include <array>
#include <memory>
#include <vector>

#include "headunit/VideoDecoder.h"

struct AVCodecContext;
struct AVFrame;
struct AVPacket;
struct SwsContext;

namespace headunit {

/// H.264 by libavcodec, set up for little delay: a picture comes out of the call that takes its access unit,
/// unless the stream itself reorders its pictures.
class FfmpegDecoder : public VideoDecoder {
 public:
  FfmpegDecoder();
  ~FfmpegDecoder() override;

  void configure(const CodecConfig& config) override;
  std::string decode(VideoFrame frame, const OnPicture& onPicture) override;
  std::vector<std::string> finish(const OnPicture& onPicture) override;

 private:
  struct Free {
    void operator()(AVCodecContext* context) const;
    void operator()(AVFrame* frame) const;
    void operator()(AVPacket* packet) const;
    void operator()(SwsContext* scaler) const;
  };
  template <class T>
  using Owned = std::unique_ptr<T, Free>;

  void open();
  std::vector<std::string> takePictures(const OnPicture& onPicture);
  Picture pictureOf(Owned<AVFrame> frame, const FrameTimes& times);
  Owned<AVFrame> inPlanes(Owned<AVFrame> frame);

  static constexpr std::size_t REMEMBERED = 64;  // more than any stream reorders

  std::vector<std::uint8_t> configuration_;
  Owned<AVCodecContext> context_;
  Owned<AVPacket> packet_;
  Owned<SwsContext> scaler_;
  std::int64_t ticket_ = 0;  // stands in for the presentation time, and finds a picture's times again
  std::array<FrameTimes, REMEMBERED> times_;
};

/// Lets libavcodec's own messages go to our log, at the lowest level.
void quietenFfmpeg();

}  // namespace headunit
