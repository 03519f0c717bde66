#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "phone/media/H264Encoder.h"
#include "phone/media/MediaDecoder.h"
#include "phone/media/PictureFitter.h"
#include "phone/media/StreamClock.h"
#include "phone/media/VideoSource.h"

namespace phone {

/// A video file in any format but H.264: decoded, fitted and encoded picture by picture as it is read. The
/// output has a steady frame rate: each of its frames shows what the file shows at that time, so pictures are
/// repeated or left out where the rates differ.
class TranscodedVideo : public VideoSource {
 public:
  /// Null on failure, with a whole sentence for the user in `*error`.
  static std::unique_ptr<TranscodedVideo> open(const std::string& path, std::unique_ptr<Demuxer> demuxer,
                                               const VideoOptions& options, std::string* error);

  std::vector<std::uint8_t> codecConfig() override { return encoder_->codecConfig(); }
  bool next(AccessUnit* unit) override;
  std::string problem() const override { return problem_; }
  std::string remark() const override;
  int width() const override { return options_.width; }
  int height() const override { return options_.height; }

 private:
  TranscodedVideo(const std::string& path, std::unique_ptr<MediaDecoder> decoder,
                  std::unique_ptr<H264Encoder> encoder, const VideoOptions& options);
  bool readAhead();
  bool restart();
  bool isOver(std::int64_t untilUs) const;

  std::string path_;
  VideoOptions options_;
  std::unique_ptr<MediaDecoder> decoder_;
  std::unique_ptr<H264Encoder> encoder_;
  PictureFitter fitter_;
  StreamClock clock_;
  FramePtr current_;          // what the file shows now
  FramePtr ahead_;            // what it shows next
  bool hasAhead_ = false;     // false at the file's end
  std::int64_t aheadUs_ = 0;  // when it shows that, since the source's start
  AVFrame* fitted_ = nullptr;
  std::int64_t returned_ = 0;
  bool ended_ = false;
  std::string problem_;
};

}  // namespace phone
