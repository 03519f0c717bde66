#pragma once

#include <mutex>
#include <string>

#include "headunit/Screen.h"

namespace headunit {

/// The file with what the screen has shown: drawn and written again after each link, on whichever thread has
/// time for it, and at last when the program ends. Any thread.
class Snapshot {
 public:
  explicit Snapshot(std::string path) : path_(std::move(path)) {}

  /// Draws the picture as large as it came, without its margins, and the strip beside it. Does nothing
  /// without a picture, or if the last one has been written.
  void write(const Screen::Shown& shown, Size margins);

  /// The same, after whatever is being written, and nothing is written later. False if the file cannot be
  /// written, which has been logged, but not again and again. Without a picture there is none, which is
  /// logged too.
  bool writeLast(const Screen::Shown& shown, Size margins);

 private:
  bool draw(const Screen::Shown& shown, Size margins);

  const std::string path_;
  std::mutex mutex_;
  bool isLast_ = false;
  std::string fault_;  // as it has been told
};

}  // namespace headunit
