#include "InputSource.h"

#include "Message.h"

InputSource::InputSource(int id, MessageRouter* messageRouter)
    : ProtocolEndpointBase(id, messageRouter, false) {}

InputSource::~InputSource() = default;

void InputSource::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  InputSourceService* const input = service->mutable_input_source_service();
  for (const int keycode : supportedKeycodes) input->add_keycodes_supported(keycode);
  if (touchScreenPresent) {
    InputSourceService_TouchScreen* const screen = input->add_touchscreen();
    screen->set_width(touchScreenWidth);
    screen->set_height(touchScreenHeight);
  }
  if (touchPadPresent) {
    InputSourceService_TouchPad* const pad = input->add_touchpad();
    pad->set_width(touchPadWidth);
    pad->set_height(touchPadHeight);
  }
}

int InputSource::routeMessage(unsigned char, unsigned short type, const shared_ptr<IoBuffer>& message) {
  switch (type) {
    case MESSAGE_KEY_BINDING_REQUEST:
      return handleRecord(this, message, &InputSource::handleKeyBindingRequest);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}

int InputSource::handleKeyBindingRequest(KeyBindingRequest const& request) {
  KeyBindingResponse response;
  response.set_status(bind(request) ? STATUS_SUCCESS : STATUS_INVALID_KEYCODE);
  sendRecord(MESSAGE_KEY_BINDING_RESPONSE, response);
  return STATUS_SUCCESS;  // a refusal travels in the response only
}

bool InputSource::bind(KeyBindingRequest const& request) {
  bool supported = true;
  for (const int keycode : request.keycodes()) supported &= supportedKeycodes.count(keycode) != 0;
  if (!supported) return false;  // refused as a whole: earlier bindings stay
  boundKeycodes.set(new std::set<int>(request.keycodes().begin(), request.keycodes().end()));
  return true;
}

bool InputSource::isBound(int keycode) const { return boundKeycodes.get()->count(keycode) != 0; }

int InputSource::reportTouch(unsigned long long timestamp, int numPointers, unsigned int const* pointerIds,
                             unsigned int const* x, unsigned int const* y, int action, int actionIndex) {
  InputReport report;
  populateTouchEvent(report.mutable_touch_event(), timestamp, numPointers, pointerIds, x, y, action,
                     actionIndex);
  sendInputReport(timestamp, &report);
  return STATUS_SUCCESS;
}

int InputSource::reportTouchPad(unsigned long long timestamp, int numPointers, unsigned int const* pointerIds,
                                unsigned int const* x, unsigned int const* y, int action, int actionIndex) {
  InputReport report;
  populateTouchEvent(report.mutable_touchpad_event(), timestamp, numPointers, pointerIds, x, y, action,
                     actionIndex);
  sendInputReport(timestamp, &report);
  return STATUS_SUCCESS;
}

void InputSource::populateTouchEvent(TouchEvent* event, unsigned long long, int numPointers,
                                     unsigned int const* pointerIds, unsigned int const* x,
                                     unsigned int const* y, int action, int actionIndex) {
  for (int i = 0; i < numPointers; ++i) {
    TouchEvent_Pointer* const pointer = event->add_pointer_data();
    pointer->set_x(x[i]);
    pointer->set_y(y[i]);
    pointer->set_pointer_id(pointerIds[i]);
  }
  event->set_action_index(static_cast<unsigned int>(actionIndex));
  event->set_action(static_cast<PointerAction>(action));
}

int InputSource::reportKey(unsigned long long timestamp, unsigned int keycode, bool down,
                           unsigned int metastate) {
  return sendKey(timestamp, keycode, down, false, metastate);
}

int InputSource::reportKeyLongPress(unsigned long long timestamp, unsigned int keycode,
                                    unsigned int metastate) {
  return sendKey(timestamp, keycode, true, true, metastate);
}

int InputSource::sendKey(unsigned long long timestamp, unsigned int keycode, bool down, bool longPress,
                         unsigned int metastate) {
  if (!isBound(static_cast<int>(keycode))) return STATUS_INVALID_KEYCODE;
  InputReport report;
  KeyEvent_Key* const key = report.mutable_key_event()->add_keys();
  key->set_keycode(keycode);
  key->set_down(down);
  key->set_metastate(metastate);
  key->set_longpress(longPress);
  sendInputReport(timestamp, &report);
  return STATUS_SUCCESS;
}

int InputSource::reportAbsolute(unsigned long long timestamp, unsigned int keycode, int value) {
  if (!isBound(static_cast<int>(keycode))) return STATUS_INVALID_KEYCODE;
  InputReport report;
  AbsoluteEvent_Abs* const control = report.mutable_absolute_event()->add_data();
  control->set_keycode(keycode);
  control->set_value(value);
  sendInputReport(timestamp, &report);
  return STATUS_SUCCESS;
}

int InputSource::reportRelative(unsigned long long timestamp, unsigned int keycode, int delta) {
  if (!isBound(static_cast<int>(keycode))) return STATUS_INVALID_KEYCODE;
  InputReport report;
  RelativeEvent_Rel* const control = report.mutable_relative_event()->add_data();
  control->set_keycode(keycode);
  control->set_delta(delta);
  sendInputReport(timestamp, &report);
  return STATUS_SUCCESS;
}

void InputSource::sendInputReport(unsigned long long timestamp, InputReport* report) {
  report->set_timestamp(timestamp);
  sendRecord(MESSAGE_INPUT_REPORT, *report);
}
