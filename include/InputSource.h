#pragma once

#include <set>

#include "ProtocolEndpointBase.h"
#include "Snapshot.h"
#include "VantryExport.h"

/// The service by which the head unit reports the driver's touches, keys and knobs. The phone binds the key
/// codes that it wants, and only events of those go out; touches need no binding.
///
/// Threads: the setters before the link starts; the reports on any thread, any number at once. Each report is
/// one message, sent at once, and dropped while no channel is open. A `timestamp` is passed on unchanged; its
/// unit and its zero are as agreed between the host and the phone.
class VANTRY_EXPORT InputSource : public ProtocolEndpointBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter().
  InputSource(int id, MessageRouter* messageRouter);
  ~InputSource() override;

  // Whether discovery lists a touch screen (initially not), and the size of its coordinates.
  void setTouchScreenPresent(bool present) { touchScreenPresent = present; }
  void setTouchScreenWidth(int width) { touchScreenWidth = width; }
  void setTouchScreenHeight(int height) { touchScreenHeight = height; }

  // The same for a touch pad.
  void setTouchPadPresent(bool present) { touchPadPresent = present; }
  void setTouchPadWidth(int width) { touchPadWidth = width; }
  void setTouchPadHeight(int height) { touchPadHeight = height; }

  /// The key codes that this head unit can report (initially none), plain integers; the phone can bind no
  /// others.
  void setSupportedKeycodes(const std::set<int>& keycodes) { supportedKeycodes = keycodes; }

  /// Any thread: whether the phone's last accepted binding holds `keycode`. A channel that closes unbinds
  /// nothing.
  bool isBound(int keycode) const;

  /// All pointers that touch the screen at one moment. Reads `numPointers` elements (none if it is 0 or less)
  /// of each array, during the call: the pointer's stable id, and its place in the coordinates that discovery
  /// declared, which is not checked. `action` is a PointerAction (anything else ends the process) and
  /// concerns the pointer at `actionIndex`. Goes out whether or not a touch screen was advertised.
  /// STATUS_SUCCESS.
  int reportTouch(unsigned long long timestamp, int numPointers, unsigned int const* pointerIds,
                  unsigned int const* x, unsigned int const* y, int action, int actionIndex);

  /// The same for the touch pad.
  int reportTouchPad(unsigned long long timestamp, int numPointers, unsigned int const* pointerIds,
                     unsigned int const* x, unsigned int const* y, int action, int actionIndex);

  // These return STATUS_INVALID_KEYCODE, with nothing sent, if `keycode` is not bound; otherwise
  // STATUS_SUCCESS.

  /// A key goes down or up. `metastate` is passed on unchanged: which bit is which modifier is as agreed with
  /// the phone.
  int reportKey(unsigned long long timestamp, unsigned int keycode, bool down, unsigned int metastate);

  /// A key has been held down for long.
  int reportKeyLongPress(unsigned long long timestamp, unsigned int keycode, unsigned int metastate);

  /// A control stands at `value` now.
  int reportAbsolute(unsigned long long timestamp, unsigned int keycode, int value);

  /// A control has moved by `delta`.
  int reportRelative(unsigned long long timestamp, unsigned int keycode, int delta);

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;

 private:
  int handleKeyBindingRequest(KeyBindingRequest const& request);
  bool bind(KeyBindingRequest const& request);
  int sendKey(unsigned long long timestamp, unsigned int keycode, bool down, bool longPress,
              unsigned int metastate);
  static void populateTouchEvent(TouchEvent* event, unsigned long long timestamp, int numPointers,
                                 unsigned int const* pointerIds, unsigned int const* x, unsigned int const* y,
                                 int action, int actionIndex);
  void sendInputReport(unsigned long long timestamp, InputReport* report);

  bool touchScreenPresent = false;
  int touchScreenWidth = 0;
  int touchScreenHeight = 0;
  bool touchPadPresent = false;
  int touchPadWidth = 0;
  int touchPadHeight = 0;
  std::set<int> supportedKeycodes;
  Snapshot<std::set<int>> boundKeycodes;  // written by the reader thread, read by reports
};
