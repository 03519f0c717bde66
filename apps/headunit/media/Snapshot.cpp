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

bool Snapshot::draw(const Screen::Shown& shown, Size margins) {
  const Bitmap image = drawScreen(layoutFor(shown.picture, margins), shown, margins, Clock::now());
  std::string error;
  const bool written = writePng(image, path_, &error);
  if (!written && error != fault_) spdlog::error("{}; choose another file with --snapshot.", error);
  fault_ = written ? "" : error;
  return written;
}

}  // namespace headunit
