#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace phone {

struct VideoOptions {
  int width = 800;          // of a picture that is encoded here: even, 160 to 4096
  int height = 480;         // likewise, 120 to 4096; a file that holds H.264 keeps its own size
  int fps = 30;             // frames a second of what is encoded here, 1 to 120
  std::int64_t frames = 0;  // the source ends after so many access units; 0 means no limit
  bool loop = false;        // a file starts again at its end, with timestamps that go on
};

/// One whole access unit of H.264 in Annex B form, as it goes into one media message.
struct AccessUnit {
  std::vector<std::uint8_t> data;
  /// When the picture is to be shown, in microseconds since the source's start. Where pictures are reordered
  /// (B frames) it goes up and down from one access unit to the next.
  std::int64_t timestampUs = 0;
  bool keyframe = false;
  /// When the access unit is to be sent, in microseconds since the source's start: 0 for the first, never
  /// falling, and never later than `timestampUs`. This is the time to pace by; it equals `timestampUs` in a
  /// stream without B frames.
  std::int64_t dueUs = 0;
};

/// A stream of H.264 access units in decoding order. Not thread-safe: one thread calls it.
class VideoSource {
 public:
  virtual ~VideoSource() = default;

  /// The sequence and picture parameter sets, Annex B, to be sent before the first access unit. The access
  /// units need not repeat them.
  virtual std::vector<std::uint8_t> codecConfig() = 0;

  /// Fills `*unit` with the next access unit; false at the end, and at every call after it.
  virtual bool next(AccessUnit* unit) = 0;

  /// Why next() came to no end but broke off, as words for the user; empty if it did not.
  virtual std::string problem() const { return {}; }

  /// What is not shown as the file wants it, as a sentence for the user; empty if nothing.
  virtual std::string remark() const { return {}; }

  virtual int width() const = 0;
  virtual int height() const = 0;
};

/// Opens a local video file of any kind that FFmpeg reads. H.264 is handed on as it is; anything else is
/// decoded, turned as the file wants it if that is by quarters, scaled to the wanted size with its
/// proportions kept, brought to the wanted frame rate and encoded as it is read. Null on failure, with a
/// whole sentence for the user in `*error`.
std::unique_ptr<VideoSource> openVideoFile(const std::string& path, const VideoOptions& options,
                                           std::string* error);

/// A moving picture drawn and encoded here; see TestPicture.h for what can be read back from it, and
/// TestPictureSource.h for one that shows touches. Null on failure, with a whole sentence in `*error`.
std::unique_ptr<VideoSource> makeTestPicture(const VideoOptions& options, std::string* error);

}  // namespace phone
