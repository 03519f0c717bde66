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

  /// Reader thread; none of them waits for anything.
  void configure(CodecConfig config);
  /// The stream starts or stops: what was wrong with it before does not count any more.
  void startOrStop();
  void receive(VideoFrame frame);

  /// Decodes what has come, and ends the thread. Calls of `acknowledge` end with it.
  void finish();
  /// Ends the thread as soon as it can: what waits is not decoded.
  void abandon();

  /// From the first damaged frame behind the latest picture to the latest one: how long frames have gone on
  /// coming without one picture coming of them. Zero while all is well, and however long none comes at all.
  Clock::duration failingFor() const { return Clock::duration(failingFor_); }

 private:
  void run();
  void decode(VideoFrame frame);
  void show(Picture picture);
  void count(const std::string& fault);
  void remark(const std::string& fault, TimePoint received);
  void forgetFaults();

  Ends ends_;
  std::unique_ptr<VideoDecoder> decoder_;
  VideoQueue queue_;
  std::atomic<Clock::rep> failingFor_{0};
  std::optional<TimePoint> firstFault_;  ///< when the frame came; none behind the latest picture
  std::uint64_t faults_ = 0;
  std::thread thread_;
};

}  // namespace headunit
