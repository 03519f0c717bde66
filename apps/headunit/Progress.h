#pragma once

#include <string>

#include "headunit/Clock.h"
#include "headunit/LinkStats.h"

namespace headunit {

/// One line that tells how a link does, written over again and again; only on a terminal.
class Progress {
 public:
  explicit Progress(bool wanted);

  /// How often the line is to be refreshed; nothing to do without a terminal.
  bool isShown() const { return shown_; }
  TimePoint due() const { return due_; }

  void update(const LinkStats& stats, TimePoint now);
  void clear();

 private:
  const bool shown_;
  TimePoint due_;
  std::uint64_t framesBefore_ = 0;
  TimePoint before_;
};

/// What the line says: picture size, frames, frame rate, latency.
std::string progressText(const VideoTotals& totals, const VideoLatencies& latencies, double framesPerSecond);

}  // namespace headunit
