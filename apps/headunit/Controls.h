#pragma once

#include <InputSource.h>

#include <mutex>
#include <set>

#include "headunit/Fingers.h"
#include "headunit/KeyHolder.h"
#include "headunit/Layout.h"

namespace headunit {

class LinkStats;

/// The touch screen's coordinates, as the phone is told them. They are as fine as the largest picture, and
/// stand for the whole of whichever picture the phone sends.
constexpr Size TOUCH_SCREEN{1920, 1080};

/// The key code of the wheel, a knob that turns.
constexpr unsigned int KNOB = 65536;

struct ControlTotals {
  std::uint64_t touches = 0;
  std::uint64_t keys = 0;
  std::uint64_t turns = 0;
};

/// The driver's hands, for whichever phone is there: what they do goes to the link that is attached, or
/// nowhere. Any thread, any number at once.
class Controls {
 public:
  /// All must stay until detach; `stats` may be null, and times touches otherwise.
  void attach(InputSource* source, ControlTotals* totals, LinkStats* stats = nullptr);
  void detach();

  /// Coordinates are pixels of a picture of the size given.
  void touchDown(unsigned int id, Point place, Size picture);
  void touchMove(unsigned int id, Point place, Size picture);
  void touchUp(unsigned int id);

  /// A key that the phone has not bound is not reported, nor the end of a press that this phone knows nothing
  /// of.
  void key(const KeyAction& action);
  void turn(int delta);

 private:
  void report(const std::optional<TouchChange>& change);
  void count(std::uint64_t ControlTotals::*what, int status);

  std::mutex mutex_;
  InputSource* source_ = nullptr;
  ControlTotals* totals_ = nullptr;
  LinkStats* stats_ = nullptr;
  Fingers fingers_;
  std::set<unsigned int> keysDown_;  // of which the phone has been told
};

}  // namespace headunit
