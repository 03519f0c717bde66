#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "phone/media/Ffmpeg.h"

namespace phone {

/// One stream of a local media file, packet by packet.
class Demuxer {
 public:
  /// Opens `path` and picks its best stream of the kind, a cover picture not counting as video. Null on
  /// failure, with a whole sentence for the user in `*error`.
  static std::unique_ptr<Demuxer> open(const std::string& path, AVMediaType kind, std::string* error);

  /// Fills `*packet` with the stream's next packet; false at the end of the file or where it breaks off.
  [[nodiscard]] bool next(AVPacket* packet);

  /// Why next() came to no end of the file but broke off, or to an end that is not the one which the file
  /// announces; empty otherwise.
  std::string problem() const { return problem_; }

  const AVStream& stream() const { return *format_->streams[stream_]; }

  /// The stream's own frame rate, or `fallback` if it tells none.
  AVRational frameRate(int fallback) const;

  /// By how many degrees, 0 to 359, the pictures are to be turned clockwise before they are shown.
  int turn() const;

  /// Whether the container's times can leap from one packet to the next, as in a recorded broadcast.
  bool mayJump() const { return (format_->iformat->flags & AVFMT_TS_DISCONT) != 0; }

  /// Title, artist and the like, by FFmpeg's name for it; empty if the file does not tell.
  std::string tag(const char* name) const;

  const AVFormatContext& format() const { return *format_; }

 private:
  Demuxer(FormatPtr format, int stream, bool isCut)
      : format_(std::move(format)), stream_(stream), isCut_(isCut) {}
  void note(const AVPacket& packet);
  std::string shortfall() const;

  FormatPtr format_;
  int stream_;
  bool isCut_;               // the file ends inside of what its format is made of
  bool isLastPart_ = false;  // the last packet is there in part only
  std::int64_t endUs_ = 0;   // of what was read
  std::string problem_;
};

}  // namespace phone
