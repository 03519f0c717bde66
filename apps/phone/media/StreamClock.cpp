#include "phone/media/StreamClock.h"

#include <algorithm>

namespace phone {
namespace {

constexpr AVRational MICROSECONDS{1, 1'000'000};
constexpr std::int64_t LONGEST_GAP_US = 10'000'000;

}  // namespace

StreamClock::StreamClock(AVRational rate, bool mayJump)
    : intervalUs_(av_rescale_q(1, av_inv_q(rate), MICROSECONDS)), mayJump_(mayJump) {}

std::int64_t StreamClock::stamp(std::int64_t time, std::int64_t duration, AVRational base) {
  const std::int64_t own =
      time == AV_NOPTS_VALUE ? originUs_ + endUs_ : av_rescale_q(time, base, MICROSECONDS);
  const std::int64_t gap = own - originUs_ - nowUs_;
  const bool jumps = mayJump_ && (gap < 0 || gap > LONGEST_GAP_US);
  if (atStart_ || jumps) originUs_ = own - endUs_;
  atStart_ = false;
  nowUs_ = std::max(nowUs_, own - originUs_);
  endUs_ = nowUs_ + (duration > 0 ? av_rescale_q(duration, base, MICROSECONDS) : intervalUs_);
  return nowUs_;
}

std::int64_t StreamClock::convert(std::int64_t time, AVRational base) const {
  return av_rescale_q(time, base, MICROSECONDS) - originUs_;
}

}  // namespace phone
