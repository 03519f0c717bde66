#include "headunit/services/InputInjection.h"

#include <vector>

namespace headunit {
namespace {

/// The pointers of a touch as the arrays that a report takes.
struct Pointers {
  explicit Pointers(const TouchEvent& event) {
    for (const TouchEvent_Pointer& pointer : event.pointer_data()) {
      ids.push_back(pointer.pointer_id());
      x.push_back(pointer.x());
      y.push_back(pointer.y());
    }
  }
  int count() const { return static_cast<int>(ids.size()); }

  std::vector<unsigned int> ids, x, y;
};

using TouchReport = int (InputSource::*)(unsigned long long, int, unsigned int const*, unsigned int const*,
                                         unsigned int const*, int, int);

int touch(InputSource* input, TouchReport report, unsigned long long timestamp, const TouchEvent& event) {
  const Pointers pointers(event);
  return (input->*report)(timestamp, pointers.count(), pointers.ids.data(), pointers.x.data(),
                          pointers.y.data(), event.action(), static_cast<int>(event.action_index()));
}

int press(InputSource* input, unsigned long long timestamp, const KeyEvent_Key& key) {
  if (key.longpress() && key.down())
    return input->reportKeyLongPress(timestamp, key.keycode(), key.metastate());
  return input->reportKey(timestamp, key.keycode(), key.down(), key.metastate());
}

}  // namespace

int reportAll(const InputReport& report, InputSource* input) {
  const unsigned long long at = report.timestamp();
  int result = STATUS_SUCCESS;
  const auto note = [&result](int status) {
    if (status != STATUS_SUCCESS) result = status;
  };
  if (report.has_touch_event()) note(touch(input, &InputSource::reportTouch, at, report.touch_event()));
  if (report.has_touchpad_event())
    note(touch(input, &InputSource::reportTouchPad, at, report.touchpad_event()));
  for (const KeyEvent_Key& key : report.key_event().keys()) note(press(input, at, key));
  for (const AbsoluteEvent_Abs& one : report.absolute_event().data())
    note(input->reportAbsolute(at, one.keycode(), one.value()));
  for (const RelativeEvent_Rel& one : report.relative_event().data())
    note(input->reportRelative(at, one.keycode(), one.delta()));
  return result;
}

}  // namespace headunit
