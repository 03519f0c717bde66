#pragma once

#include <memory>
#include <string>

#include "phone/media/Demuxer.h"
#include "phone/media/Ffmpeg.h"

namespace phone {

/// The decoded frames of one stream of a local media file. What is damaged is passed over.
class MediaDecoder {
 public:
  /// Opens `path` at the first frame of its best stream of the kind, for which it has been decoded: a file
  /// that only looks like media fails here. Null on failure, with a whole sentence for the user in `*error`.
  static std::unique_ptr<MediaDecoder> open(const std::string& path, AVMediaType kind, std::string* error);

  /// As `open`, for a file that was opened already.
  static std::unique_ptr<MediaDecoder> start(const std::string& path, std::unique_ptr<Demuxer> demuxer,
                                             std::string* error);

  /// The next frame, valid until the next call; null at the end.
  [[nodiscard]] AVFrame* next();

  /// Why next() came to no end of the file but broke off; empty if it did not.
  std::string problem() const;

  const Demuxer& demuxer() const { return *demuxer_; }
  const AVCodecContext& codec() const { return *codec_; }

 private:
  MediaDecoder(std::unique_ptr<Demuxer> demuxer, CodecPtr codec);
  void feed();
  bool decode();

  std::unique_ptr<Demuxer> demuxer_;
  CodecPtr codec_;
  PacketPtr packet_;
  FramePtr frame_;
  bool pending_ = false;  // frame_ was decoded ahead
  bool isStuck_ = false;  // the decoder failed on and on
};

}  // namespace phone
