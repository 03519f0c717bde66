#include "headunit/Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

namespace headunit {
namespace {

constexpr milliseconds EVERY(500);

}  // namespace

Progress::Progress(bool wanted) : shown_(wanted && isatty(STDERR_FILENO) == 1) {}

std::string progressText(const VideoTotals& totals, const VideoLatencies& latencies, double framesPerSecond) {
  if (totals.frames == 0) return "connected, no picture yet";
  const Latency& latency = latencies.socketToDecoded;
  return fmt::format("{}x{}  {} frames  {:.0f} fps  {} dropped  socket to decoded {:.1f} ms (p99 {:.1f} ms)",
                     totals.width, totals.height, totals.frames, framesPerSecond, totals.dropped,
                     static_cast<double>(latency.p50.count()) / 1e3,
                     static_cast<double>(latency.p99.count()) / 1e3);
}

void Progress::update(const LinkStats& stats, TimePoint now) {
  if (!shown_ || now < due_) return;
  const VideoTotals totals = stats.totals();
  const double seconds = std::chrono::duration<double>(now - before_).count();
  const std::uint64_t news = totals.frames >= framesBefore_ ? totals.frames - framesBefore_ : totals.frames;
  const std::string line = progressText(totals, stats.latencies(), static_cast<double>(news) / seconds);
  std::fprintf(stderr, "\r\033[K%s", line.c_str());
  std::fflush(stderr);
  framesBefore_ = totals.frames;
  before_ = now;
  due_ = now + EVERY;
}

void Progress::clear() {
  if (!shown_) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
}

}  // namespace headunit
