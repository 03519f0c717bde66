#include "phone/InputReader.h"

namespace phone {

InputReader::~InputReader() {
  if (channel_ != 0) link_->attach(channel_, nullptr);
}

void InputReader::open(std::uint8_t channel, const Service& service) {
  channel_ = channel;
  offered_ = service.input_source_service();
  if (offered_.touchscreen_size() > 0) {
    touches_->setSpace({offered_.touchscreen(0).width(), offered_.touchscreen(0).height()});
  }
  link_->openChannel(channel, service.id(), this);
}

void InputReader::onOpened() {
  KeyBindingRequest request;
  *request.mutable_keycodes() = offered_.keycodes_supported();
  link_->send(channel_, MESSAGE_KEY_BINDING_REQUEST, request);
}

void InputReader::onMessage(const Message& message) {
  switch (message.type()) {
    case MESSAGE_KEY_BINDING_RESPONSE: return onBindingResponse(message);
    case MESSAGE_INPUT_REPORT: return onReport(message);
    default: return;
  }
}

void InputReader::onBindingResponse(const Message& message) {
  const auto response = message.as<KeyBindingResponse>();
  if (!response) {
    ++stats_.damaged;
  } else if (response->status() == STATUS_SUCCESS) {
    stats_.bound = static_cast<std::uint64_t>(offered_.keycodes_supported_size());
  }
}

void InputReader::onReport(const Message& message) {
  const auto report = message.as<InputReport>();
  if (!report) {
    ++stats_.damaged;
    return;
  }
  ++stats_.reports;
  if (report->has_key_event()) ++stats_.keys;
  if (report->has_absolute_event()) ++stats_.absolute;
  if (report->has_relative_event()) ++stats_.relative;
  if (report->has_touchpad_event()) ++stats_.touchpad;
  if (report->has_touch_event()) touches_->take(report->touch_event());
  if (listener_ != nullptr) listener_->onInputReport(*report);
}

}  // namespace phone
