#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

#include "headunit/LinkStats.h"
#include "headunit/Picture.h"
#include "headunit/VideoDecoder.h"
#include "headunit/VideoQueue.h"

namespace headunit {

/// How many pictures a run of the program is to show, over all its links.
class FrameBudget {
 public:
  /// 0 stands for no end.
  explicit FrameBudget(std::uint64_t frames) : frames_(frames) {}

  /// One more picture: returns whether it is still to be shown.
  bool spend() { return frames_ == 0 || spent_++ < frames_; }
  bool exhausted() const { return frames_ != 0 && spent_ >= frames_; }

 private:
  const std::uint64_t frames_;
  std::atomic<std::uint64_t> spent_{0};
};

/// The way of one link's video from the reader thread to the screen: a queue, the decoder on a thread of its
/// own, and the slot that the screen looks at. Each frame is acknowledged as soon as it has been decoded.
class VideoPipeline {
 public:
  struct Ends {
    std::function<void(int session, unsigned int count)> acknowledge;
    std::function<void()> changed;  ///< the budget is exhausted, or decoding is going wrong
    PictureSlot* slot = nullptr;
    FrameBudget* budget = nullptr;
    std::shared_ptr<LinkStats> stats;
  };

  VideoPipeline(std::unique_ptr<VideoDecoder> decoder, Ends ends);
  ~VideoPipeline() { finish(); }

  /// Reader thread; neither waits for anything.
  void configure(CodecConfig config);
  void receive(VideoFrame frame);

  /// Decodes what has come, and ends the thread. Calls of `acknowledge` end with it.
  void finish();
  /// Ends the thread as soon as it can: what waits is not decoded.
  void abandon();

  /// Since when frames have come without one picture coming of them; nothing while all is well.
  std::optional<TimePoint> failingSince() const;

 private:
  void run();
  void decode(VideoFrame frame);
  void show(Picture picture);
  void remark(const std::string& fault);

  Ends ends_;
  std::unique_ptr<VideoDecoder> decoder_;
  VideoQueue queue_;
  std::atomic<Clock::rep> failingSince_{0};
  std::uint64_t faults_ = 0;
  std::thread thread_;
};

}  // namespace headunit
