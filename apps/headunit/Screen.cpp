#include "headunit/Screen.h"

#include "headunit/LinkStats.h"

namespace headunit {

void Screen::nowShows(Picture picture) {
  picture.times.shown = Clock::now();
  if (picture.stats) picture.stats->shown(picture.times);
  const std::lock_guard lock(mutex_);
  last_ = std::move(picture);
}

void HeadlessScreen::run() {
  while (std::optional<Picture> picture = slot_->wait()) nowShows(std::move(*picture));
}

}  // namespace headunit
