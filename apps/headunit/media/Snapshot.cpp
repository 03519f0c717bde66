#include "headunit/media/Snapshot.h"

#include <spdlog/spdlog.h>

#include "headunit/media/Png.h"
#include "headunit/media/ScreenImage.h"

namespace headunit {

void Snapshot::write(const Screen::Shown& shown, Size margins) {
  const std::lock_guard lock(mutex_);
  if (!isLast_ && shown.picture) draw(shown, margins);
}

bool Snapshot::writeLast(const Screen::Shown& shown, Size margins) {
  const std::lock_guard lock(mutex_);
  isLast_ = true;
  if (shown.picture) return draw(shown, margins);
  spdlog::warn("{} is not written: no picture was ever shown.", path_);
  return true;
}

bool Snapshot::draw(const Screen::Shown& shown, Size margins) const {
  const Bitmap image = drawScreen(layoutFor(shown.picture, margins), shown, margins, Clock::now());
  std::string error;
  if (writePng(image, path_, &error)) return true;
  spdlog::error("{}.", error);
  return false;
}

}  // namespace headunit
