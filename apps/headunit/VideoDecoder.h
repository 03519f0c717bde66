#pragma once

#include <functional>
#include <string>
#include <vector>

#include "headunit/Picture.h"
#include "headunit/VideoQueue.h"

namespace headunit {

/// Turns access units into pictures. One thread.
class VideoDecoder {
 public:
  /// Gets each picture, in the order in which they are to be shown, with the times of the frame that it came
  /// of.
  using OnPicture = std::function<void(Picture)>;

  virtual ~VideoDecoder() = default;

  /// A stream begins, or goes on with other parameters.
  virtual void configure(const CodecConfig& config) = 0;

  /// Decodes a whole access unit. Returns what is wrong with it, in words, or an empty text. A picture that
  /// is damaged in part may come out all the same.
  virtual std::string decode(VideoFrame frame, const OnPicture& onPicture) = 0;

  /// The stream is at its end: gives out what was held back, and is ready for another stream. Returns what is
  /// wrong with it, a text for each frame.
  virtual std::vector<std::string> finish(const OnPicture& onPicture) = 0;
};

}  // namespace headunit
