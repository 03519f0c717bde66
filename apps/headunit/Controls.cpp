#include "headunit/Controls.h"

#include <algorithm>

#include "headunit/Clock.h"
#include "headunit/LinkStats.h"

namespace headunit {
namespace {

unsigned long long timestamp() {
  const auto now = std::chrono::duration_cast<microseconds>(Clock::now().time_since_epoch());
  return static_cast<unsigned long long>(now.count());
}

// The middle of a picture's pixel, on the touch screen.
unsigned int onScreen(int at, int picture, int screen) {
  if (picture <= 0) return 0;
  const long long middle = (2LL * at + 1) * screen / (2LL * picture);
  return static_cast<unsigned int>(std::clamp(middle, 0LL, static_cast<long long>(screen) - 1));
}

Finger fingerAt(unsigned int id, Point place, Size picture) {
  return {id, onScreen(place.x, picture.width, TOUCH_SCREEN.width),
          onScreen(place.y, picture.height, TOUCH_SCREEN.height)};
}

}  // namespace

void Controls::attach(InputSource* source, ControlTotals* totals, LinkStats* stats) {
  const std::lock_guard lock(mutex_);
  source_ = source;
  totals_ = totals;
  stats_ = stats;
  // What is still down was meant for another phone.
  fingers_ = Fingers();
  keysDown_.clear();
}

void Controls::detach() { attach(nullptr, nullptr); }

void Controls::touchDown(unsigned int id, Point place, Size picture) {
  const std::lock_guard lock(mutex_);
  report(fingers_.down(fingerAt(id, place, picture)));
}

void Controls::touchMove(unsigned int id, Point place, Size picture) {
  const std::lock_guard lock(mutex_);
  report(fingers_.move(fingerAt(id, place, picture)));
}

void Controls::touchUp(unsigned int id) {
  const std::lock_guard lock(mutex_);
  report(fingers_.up(id));
}

void Controls::report(const std::optional<TouchChange>& change) {
  if (!change || source_ == nullptr || !source_->isChannelOpen()) return;
  std::vector<unsigned int> ids;
  std::vector<unsigned int> x;
  std::vector<unsigned int> y;
  for (const Finger& finger : change->fingers) {
    ids.push_back(finger.id);
    x.push_back(finger.x);
    y.push_back(finger.y);
  }
  if (stats_ != nullptr) stats_->touched(Clock::now());
  count(&ControlTotals::touches, source_->reportTouch(timestamp(), static_cast<int>(ids.size()), ids.data(),
                                                      x.data(), y.data(), change->action, change->index));
}

void Controls::key(const KeyAction& action) {
  const std::lock_guard lock(mutex_);
  if (source_ == nullptr || !source_->isChannelOpen()) return;
  const bool presses = action.kind == KeyAction::Kind::press;
  if (!presses && keysDown_.count(action.code) == 0) return;
  const int status = action.kind == KeyAction::Kind::longPress
                         ? source_->reportKeyLongPress(timestamp(), action.code, action.modifiers)
                         : source_->reportKey(timestamp(), action.code, presses, action.modifiers);
  if (presses && status == STATUS_SUCCESS) keysDown_.insert(action.code);
  if (action.kind == KeyAction::Kind::release) keysDown_.erase(action.code);
  count(&ControlTotals::keys, status);
}

void Controls::turn(int delta) {
  const std::lock_guard lock(mutex_);
  if (source_ == nullptr || !source_->isChannelOpen()) return;
  count(&ControlTotals::turns, source_->reportRelative(timestamp(), KNOB, delta));
}

void Controls::count(std::uint64_t ControlTotals::*what, int status) {
  if (status == STATUS_SUCCESS) ++(totals_->*what);
}

}  // namespace headunit
