#include "phone/TouchScreen.h"

namespace phone {

namespace {

// A finger that leaves is still among the pointers of the event that says so.
bool lifts(const TouchEvent& event, int index) {
  if (event.action() == POINTER_ACTION_1) return true;
  return event.action() == POINTER_ACTION_6 && static_cast<std::uint32_t>(index) == event.action_index();
}

int scaled(std::uint32_t value, int from, int to) {
  const auto wide = static_cast<std::int64_t>(value);
  return static_cast<int>(from > 0 ? wide * to / from : wide);
}

}  // namespace

void TouchScreen::setPicture(TestPictureSource* picture) {
  picture_ = picture;
  if (stats_.received > 0) show();
}

void TouchScreen::take(const TouchEvent& event) {
  ++stats_.received;
  unseen_.push_back(timers_->now());
  latest_ = event;
  show();
}

void TouchScreen::show() {
  if (picture_ == nullptr) return;
  std::vector<TouchMark> marks;
  for (int i = 0; i < latest_.pointer_data_size(); ++i) {
    const TouchEvent_Pointer& finger = latest_.pointer_data(i);
    marks.push_back({scaled(finger.x(), space_.width, picture_->width()),
                     scaled(finger.y(), space_.height, picture_->height()),
                     static_cast<int>(finger.pointer_id()), lifts(latest_, i)});
  }
  // A picture that has come late, or anew, counts from its own beginning.
  while (picture_->setTouches(marks) < stats_.received) {
  }
}

void TouchScreen::onPictureSent(std::uint32_t sequence) {
  while (stats_.shown < sequence && !unseen_.empty()) {
    stats_.latencies.push_back(timers_->now() - unseen_.front());
    unseen_.pop_front();
    ++stats_.shown;
  }
}

}  // namespace phone
