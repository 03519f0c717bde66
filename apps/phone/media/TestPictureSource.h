#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "phone/media/TestPicture.h"
#include "phone/media/VideoSource.h"

namespace phone {

/// The moving test picture as a stream. The frame counter starts at 0 and rises by one a frame; the clock in
/// the picture is the frame's own timestamp.
class TestPictureSource : public VideoSource {
 public:
  /// The fingers that the next frame drawn shows, replacing those of the call before; empty when all are
  /// lifted. Any thread may call it at any time. Returns the touch sequence number, which rises by one a call
  /// starting at 1; that frame, and all after it until the next call, carry the number (see `readTouches`).
  virtual std::uint32_t setTouches(std::vector<TouchMark> touches) = 0;

  /// When the next access unit is due, in microseconds since the source's start; called as `next` is.
  virtual std::int64_t nextDueUs() const = 0;

  /// The touch sequence number that the access unit last returned by `next` shows; 0 before any touch. To be
  /// called on the thread that calls `next`.
  virtual std::uint32_t shownTouchSequence() const = 0;
};

/// As `makeTestPicture`, for callers that set touches.
std::unique_ptr<TestPictureSource> makeTestPictureSource(const VideoOptions& options, std::string* error);

}  // namespace phone
