#pragma once

#include <memory>
#include <string>
#include <vector>

#include "phone/media/Demuxer.h"
#include "phone/media/StreamClock.h"
#include "phone/media/VideoSource.h"

namespace phone {

/// A file's H.264 stream, handed on as it is: only the framing of NAL units changes, to Annex B. Access units
/// before the first key frame, which nobody could decode, are left out. A container that stores one time only
/// (AVI, or none as in a bare .h264 file) gives `timestampUs` equal to `dueUs` even where pictures are
/// reordered.
class PassthroughVideo : public VideoSource {
 public:
  /// Null on failure, with a whole sentence for the user in `*error`.
  static std::unique_ptr<PassthroughVideo> open(const std::string& path, std::unique_ptr<Demuxer> demuxer,
                                                const VideoOptions& options, std::string* error);

  std::vector<std::uint8_t> codecConfig() override { return config_; }
  bool next(AccessUnit* unit) override;
  std::string problem() const override { return problem_; }
  std::string remark() const override;
  int width() const override { return width_; }
  int height() const override { return height_; }

 private:
  PassthroughVideo(const std::string& path, std::unique_ptr<Demuxer> demuxer, const VideoOptions& options);
  bool startFilter(std::string* error);
  bool restart();
  bool readPacket();
  bool readFromKeyframe();
  void findConfig();
  void stamp(AccessUnit* unit);

  std::string path_;
  VideoOptions options_;
  std::unique_ptr<Demuxer> demuxer_;
  FilterPtr filter_;
  PacketPtr packet_;
  StreamClock clock_;
  std::vector<std::uint8_t> config_;
  int width_;
  int height_;
  std::int64_t returned_ = 0;
  bool atStart_ = true;   // the next packet is the first of a pass through the file
  bool pending_ = false;  // packet_ was read ahead
  bool ended_ = false;
  std::string problem_;
};

}  // namespace phone
