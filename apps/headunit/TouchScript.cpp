#include "headunit/TouchScript.h"

#include <spdlog/spdlog.h>

#include <charconv>

namespace headunit {
namespace {

constexpr unsigned int SCRIPTED_FINGER = 99;
constexpr milliseconds BEFORE_THE_FIRST_PICTURE(20);

}  // namespace

std::optional<TouchScript> parseTouchScript(const std::string& text) {
  int numbers[3] = {};
  const char* cursor = text.data();
  const char* const end = cursor + text.size();
  for (int i = 0; i < 3; ++i) {
    if (i > 0 && (cursor == end || *cursor++ != ',')) return {};
    const auto [stop, problem] = std::from_chars(cursor, end, numbers[i]);
    if (problem != std::errc() || numbers[i] < 0) return {};
    cursor = stop;
  }
  if (cursor != end || numbers[2] < 2) return {};
  return TouchScript{{numbers[0], numbers[1]}, milliseconds(numbers[2])};
}

TimePoint TouchPlayer::act(TimePoint now) {
  const Size picture = pictureSize_();
  if (picture.width == 0) return now + BEFORE_THE_FIRST_PICTURE;
  if (down_) {
    controls_->touchUp(SCRIPTED_FINGER);
    down_ = false;
  } else if (isInside(picture)) {
    controls_->touchDown(SCRIPTED_FINGER, script_.place, picture);
    down_ = true;
  }
  return now + script_.every / 2;
}

bool TouchPlayer::isInside(Size picture) {
  const Point place = script_.place;
  const bool inside = contains({0, 0, picture.width, picture.height}, place);
  if (!inside && !complained_) {
    spdlog::warn("Nothing is tapped: {},{} is no place of a picture of {}x{} pixels; check --touch.", place.x,
                 place.y, picture.width, picture.height);
  }
  complained_ = complained_ || !inside;
  return inside;
}

}  // namespace headunit
