#include "phone/media/StreamClock.h"

#include <algorithm>

namespace phone {
namespace {

constexpr AVRational MICROSECONDS{1, 1'000'000};
constexpr std::int64_t LONGEST_GAP_US = 10'000'000;
constexpr std::int64_t SHORTEST_PASS_US = 10'000;
constexpr std::int64_t FARTHEST_US = 1'000'000'000'000'000;  // some 30 years

// A damaged file may tell any number; none of them may overflow what is computed from it.
std::int64_t microseconds(std::int64_t time, AVRational base) {
  return std::clamp(av_rescale_q(time, base, MICROSECONDS), -FARTHEST_US, FARTHEST_US);
}

}  // namespace

StreamClock::StreamClock(AVRational rate, bool mayJump)
    : intervalUs_(microseconds(1, av_inv_q(rate))), mayJump_(mayJump) {}

std::int64_t StreamClock::stamp(std::int64_t time, std::int64_t duration, AVRational base) {
  const std::int64_t own = time == AV_NOPTS_VALUE ? originUs_ + endUs_ : microseconds(time, base);
  const std::int64_t gap = own - originUs_ - nowUs_;
  const bool jumps = mayJump_ && (gap < 0 || gap > LONGEST_GAP_US);
  if (atStart_ || jumps) originUs_ = own - endUs_;
  if (atStart_) passStartUs_ = endUs_;
  atStart_ = false;
  nowUs_ = std::max(nowUs_, own - originUs_);
  endUs_ = nowUs_ + (duration > 0 ? microseconds(duration, base) : intervalUs_);
  return nowUs_;
}

std::int64_t StreamClock::convert(std::int64_t time, AVRational base) const {
  return microseconds(time, base) - originUs_;
}

void StreamClock::startAgain() {
  atStart_ = true;
  endUs_ = std::max(endUs_, passStartUs_ + SHORTEST_PASS_US);
}

}  // namespace phone
