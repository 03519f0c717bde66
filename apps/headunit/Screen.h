#pragma once

#include <mutex>
#include <optional>

#include "headunit/Picture.h"

namespace headunit {

/// Where pictures go: a window, or nothing at all. One for the whole run of the program.
class Screen {
 public:
  virtual ~Screen() = default;

  /// Main thread: shows what comes through the slot until the slot is closed, and then what is still in it.
  virtual void run() = 0;

  /// Any thread: the last picture shown.
  std::optional<Picture> lastShown() const {
    const std::lock_guard lock(mutex_);
    return last_;
  }

 protected:
  /// The picture can be seen from now on.
  void nowShows(Picture picture);

 private:
  mutable std::mutex mutex_;
  std::optional<Picture> last_;
};

/// A screen that nobody sees.
class HeadlessScreen : public Screen {
 public:
  explicit HeadlessScreen(PictureSlot* slot) : slot_(slot) {}
  void run() override;

 private:
  PictureSlot* const slot_;
};

}  // namespace headunit
