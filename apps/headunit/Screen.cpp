#include "headunit/Screen.h"

#include "headunit/LinkStats.h"
#include "headunit/TouchStrip.h"

namespace headunit {
namespace {

void note(const Picture& picture) {
  LinkStats& stats = *picture.stats;
  stats.shown(picture.times);
  if (!stats.awaitsTouches()) return;
  const std::optional<std::uint32_t> touches = touchesSeenIn(picture);
  if (touches) stats.touchesSeen(*touches, picture.times.shown);
}

}  // namespace

void Screen::nowShows(Picture picture) {
  picture.times.shown = Clock::now();
  if (picture.stats) note(picture);
  const std::lock_guard lock(mutex_);
  last_ = std::move(picture);
}

Screen::Shown Screen::showsNow() const {
  Shown shown{lastShown(), cluster_->view(), {}};
  shown.layout = layoutWith(shown.picture);
  return shown;
}

ScreenLayout layoutFor(const std::optional<Picture>& picture, Size margins) {
  if (!picture) return besidePicture(SMALLEST_PICTURE);
  const Rect shown = withoutMargins({picture->width, picture->height}, margins);
  return besidePicture({shown.width, shown.height});
}

void HeadlessScreen::run() {
  while (std::optional<Picture> picture = slot_->wait()) nowShows(std::move(*picture));
}

}  // namespace headunit
