// What a head unit that can be driven from the phone lets the phone see beyond its own behaviour.
#include "phone/BatchedSensors.h"
#include "phone/verify/Probe.h"
#include "phone/verify/SensorRequests.h"

namespace phone::verify {

namespace {

constexpr char serviceName[] = "com.corvane.drovia.projection.protocol.VantryVerificationVendorExtension";

Service extension(Probe& probe) {
  return probe.find(
      [](const Service& one) { return one.vendor_extension_service().service_name() == serviceName; },
      "the verification extension");
}

Service sensors(Probe& probe) {
  return probe.find([](const Service& one) { return one.sensor_source_service().sensors_size() > 0; },
                    "sensors");
}

Service input(Probe& probe) {
  return probe.find([](const Service& one) { return one.has_input_source_service(); }, "input");
}

void refusesUnknown(Probe& probe) {
  const std::uint8_t channel = probe.channelOf(extension(probe));
  for (const std::uint16_t type :
       std::initializer_list<std::uint16_t>{0x8002, 0x8006, 0x8007, 0x8009, 0x800b, 0x800c, 1}) {
    probe.expectRefused(channel, messageBytes(type), "type " + hex(type) + " on the verification channel");
  }
  probe.expectRefused(channel, messageBytes(MESSAGE_VANTRY_VERIFICATION_INJECT_INPUT), "an empty injection");
}

VantryVerificationDisplayInformationResponse displaySize(Probe& probe, std::uint8_t channel) {
  probe.link().send(channel, MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_REQUEST,
                    VantryVerificationDisplayInformationRequest());
  return probe.await<VantryVerificationDisplayInformationResponse>(
      channel, MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_RESPONSE, "the display's size");
}

void tellsDisplay(Probe& probe) {
  const auto size = displaySize(probe, probe.channelOf(extension(probe)));
  Probe::expect(size.native_width() > 0 && size.native_height() > 0, "a size above zero",
                std::to_string(size.native_width()) + " x " + std::to_string(size.native_height()));
}

void capturesScreen(Probe& probe) {
  const std::uint8_t channel = probe.channelOf(extension(probe));
  const auto size = displaySize(probe, channel);
  probe.link().send(channel, MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_REQUEST,
                    VantryVerificationScreenCaptureRequest());
  const auto answer = probe.await<VantryVerificationScreenCaptureResponse>(
      channel, MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_RESPONSE, "a screen capture", 3'000'000);
  const std::string& png = answer.screen_capture();
  Probe::expect(png.size() > 24 && png.compare(0, 8, "\x89PNG\r\n\x1a\n") == 0, "a PNG file",
                std::to_string(png.size()) + " bytes of something else");
  const auto* header = reinterpret_cast<const std::uint8_t*>(png.data());
  const auto width = static_cast<int>(readBigEndian<std::uint32_t>(header + 16));
  const auto height = static_cast<int>(readBigEndian<std::uint32_t>(header + 20));
  Probe::expect(
      width == size.native_width() && height == size.native_height(),
      "a picture of " + std::to_string(size.native_width()) + " x " + std::to_string(size.native_height()),
      std::to_string(width) + " x " + std::to_string(height));
}

void forcesAudioFocus(Probe& probe) {
  const std::uint8_t channel = probe.channelOf(extension(probe));
  for (const AudioFocusStateType state : {AUDIO_FOCUS_STATE_3, AUDIO_FOCUS_STATE_1}) {
    VantryVerificationAudioFocus focus;
    focus.set_audio_focus_state(state);
    focus.set_channel(0);
    focus.set_unsolicited(true);
    probe.link().send(channel, MESSAGE_VANTRY_VERIFICATION_AUDIO_FOCUS, focus);
    const auto told =
        probe.await<AudioFocusNotification>(0, MESSAGE_AUDIO_FOCUS_NOTIFICATION, "the forced focus");
    Probe::expect(
        told.focus_state() == state && told.unsolicited(), "state " + std::to_string(state) + ", unsolicited",
        "state " + std::to_string(told.focus_state()) + (told.unsolicited() ? ", unsolicited" : ""));
  }
}

void forcesVideoFocus(Probe& probe) {
  const Service video = probe.find(
      [](const Service& one) { return one.media_sink_service().video_configs_size() > 0; }, "a picture");
  const std::uint8_t channel = probe.channelOf(extension(probe));
  const std::uint8_t picture = probe.open(video);
  probe.settle();
  for (const VideoFocusMode mode : {VIDEO_FOCUS_MODE_2, VIDEO_FOCUS_MODE_1}) {
    VantryVerificationVideoFocus focus;
    focus.set_video_focus_mode(mode);
    focus.set_unsolicited(true);
    probe.link().send(channel, MESSAGE_VANTRY_VERIFICATION_VIDEO_FOCUS, focus);
    const auto told =
        probe.await<VideoFocusNotification>(picture, MESSAGE_VIDEO_FOCUS_NOTIFICATION, "the forced focus");
    Probe::expect(told.focus() == mode && told.unsolicited(),
                  "mode " + std::to_string(mode) + ", unsolicited",
                  "mode " + std::to_string(told.focus()) + (told.unsolicited() ? ", unsolicited" : ""));
  }
  probe.close(picture);
}

// A value that no drive comes to by itself.
int reading(const Service& service, SensorBatch* batch) {
  for (const auto& sensor : service.sensor_source_service().sensors()) {
    switch (sensor.sensor_type()) {
      case SENSOR_SPEED: batch->add_speed_data()->set_speed_e3(54'321); return SENSOR_SPEED;
      case SENSOR_ODOMETER: batch->add_odometer_data()->set_kms_e1(7'654'321); return SENSOR_ODOMETER;
      case SENSOR_RPM: batch->add_rpm_data()->set_rpm_e3(1'234'567); return SENSOR_RPM;
      case SENSOR_NIGHT_MODE: batch->add_night_mode_data()->set_night_mode(true); return SENSOR_NIGHT_MODE;
      default: break;
    }
  }
  throw NotOffered{"a sensor whose value could be told apart"};
}

bool holds(Probe& probe, std::uint8_t channel, const SensorBatch& wanted) {
  const auto& all = probe.link().received(channel);
  for (const Message& message : all) {
    const auto batch = message.type() == MESSAGE_SENSOR_BATCH ? message.as<SensorBatch>() : std::nullopt;
    if (batch && batch->SerializeAsString() == wanted.SerializeAsString()) return true;
  }
  return false;
}

void inject(Probe& probe, std::uint8_t channel, const SensorBatch& batch) {
  VantryVerificationSetSensor set;
  *set.mutable_sensors() = batch;
  probe.link().send(channel, MESSAGE_VANTRY_VERIFICATION_SET_SENSOR, set);
}

void pushesSensors(Probe& probe) {
  const Service service = sensors(probe);
  const Service verification = extension(probe);
  probe.freshUpLink();
  const std::uint8_t channel = probe.open(service);
  SensorBatch value;
  const int type = reading(service, &value);
  probe.link().sendMessage(channel, sensorRequest(type, 0));
  probe.await(channel, MESSAGE_SENSOR_RESPONSE, "a SensorResponse");
  inject(probe, probe.channelOf(verification), value);
  Probe::expect(probe.runUntil([&] { return holds(probe, channel, value); }),
                "the injected value of sensor " + std::to_string(type) + ", alone in its batch",
                probe.cameOn(channel));
}

void parksSensors(Probe& probe) {
  const Service service = sensors(probe);
  const Service verification = extension(probe);
  probe.freshUpLink();
  const std::uint8_t channel = probe.open(service);
  SensorBatch value;
  const int type = reading(service, &value);
  inject(probe, probe.channelOf(verification), value);
  probe.settle();
  Probe::expect(probe.count(channel, MESSAGE_SENSOR_BATCH) == 0, "a value that nobody asked for kept back",
                probe.cameOn(channel));
  probe.link().sendMessage(channel, sensorRequest(type, 0));
  const Message response = probe.await(channel, MESSAGE_SENSOR_RESPONSE, "a SensorResponse");
  const Message batch = probe.await(channel, MESSAGE_SENSOR_BATCH, "the value that was kept back");
  Probe::expect(response.order < batch.order, "the response ahead of the value", "the other order");
  Probe::expect(sensorsIn(*batch.as<SensorBatch>()).count(type) == 1, "sensor " + std::to_string(type),
                "another sensor");
}

void injectInput(Probe& probe, const InputReport& report) {
  VantryVerificationInjectInput injection;
  *injection.mutable_input() = report;
  probe.link().send(probe.channelOf(extension(probe)), MESSAGE_VANTRY_VERIFICATION_INJECT_INPUT, injection);
}

void bindKeys(Probe& probe, std::uint8_t channel, const std::vector<int>& codes) {
  KeyBindingRequest request;
  for (const int code : codes) request.add_keycodes(code);
  probe.link().send(channel, MESSAGE_KEY_BINDING_REQUEST, request);
  probe.await(channel, MESSAGE_KEY_BINDING_RESPONSE, "a KeyBindingResponse");
}

InputReport key(int code) {
  InputReport report;
  report.set_timestamp(4711);
  KeyEvent_Key* one = report.mutable_key_event()->add_keys();
  one->set_keycode(static_cast<std::uint32_t>(code));
  one->set_down(true);
  one->set_metastate(0);
  one->set_longpress(false);
  return report;
}

int someKey(const Service& service) {
  if (service.input_source_service().keycodes_supported().empty()) throw NotOffered{"a key"};
  return service.input_source_service().keycodes_supported(0);
}

void reportsBoundKeys(Probe& probe) {
  const Service service = input(probe);
  extension(probe);
  const std::uint8_t channel = probe.open(service);
  bindKeys(probe, channel, {someKey(service)});
  injectInput(probe, key(someKey(service)));
  const auto report = probe.await<InputReport>(channel, MESSAGE_INPUT_REPORT, "a report of the injected key");
  Probe::expect(report.key_event().keys_size() == 1, "one key",
                std::to_string(report.key_event().keys_size()));
  const KeyEvent_Key& one = report.key_event().keys(0);
  Probe::expect(static_cast<int>(one.keycode()) == someKey(service) && one.down() && one.has_longpress() &&
                    !one.longpress(),
                "the injected key, pressed and not long",
                "key " + std::to_string(one.keycode()) + (one.longpress() ? ", long" : ""));
  bindKeys(probe, channel, {});
  probe.close(channel);
}

void keepsUnboundKeys(Probe& probe) {
  const Service service = input(probe);
  extension(probe);
  const std::uint8_t channel = probe.open(service);
  bindKeys(probe, channel, {someKey(service)});
  bindKeys(probe, channel, {});
  injectInput(probe, key(someKey(service)));
  probe.settle();
  Probe::expect(probe.count(channel, MESSAGE_INPUT_REPORT) == 0, "no report of a key that is no longer bound",
                probe.cameOn(channel));
  probe.close(channel);
}

void keepsBindingsAfterRefusal(Probe& probe) {
  const Service service = input(probe);
  extension(probe);
  const std::uint8_t channel = probe.open(service);
  bindKeys(probe, channel, {someKey(service)});
  bindKeys(probe, channel, {someKey(service), 999'999});
  injectInput(probe, key(someKey(service)));
  probe.await(channel, MESSAGE_INPUT_REPORT,
              "a report of a key whose binding a refused request must not touch");
  bindKeys(probe, channel, {});
  probe.close(channel);
}

void reportsTouches(Probe& probe) {
  const Service service = input(probe);
  if (service.input_source_service().touchscreen_size() == 0) throw NotOffered{"a touch screen"};
  const std::uint8_t channel = probe.open(service);
  InputReport touch;
  touch.set_timestamp(4712);
  for (const std::uint32_t id : {4U, 2U}) {
    TouchEvent_Pointer* pointer = touch.mutable_touch_event()->add_pointer_data();
    pointer->set_x(10 * id);
    pointer->set_y(20 * id);
    pointer->set_pointer_id(id);
  }
  touch.mutable_touch_event()->set_action_index(1);
  touch.mutable_touch_event()->set_action(POINTER_ACTION_5);
  injectInput(probe, touch);
  const auto report =
      probe.await<InputReport>(channel, MESSAGE_INPUT_REPORT, "a report of the injected touch");
  Probe::expect(report.touch_event().SerializeAsString() == touch.touch_event().SerializeAsString(),
                "both pointers, in their order",
                std::to_string(report.touch_event().pointer_data_size()) + " pointers");
  probe.close(channel);
}

}  // namespace

Checks verificationChecks() {
  return {
      {"verification.refused", "Messages that no operation takes are refused.", refusesUnknown},
      {"verification.display", "The display's size is told.", tellsDisplay},
      {"verification.capture", "A screen capture is a PNG of the display's size.", capturesScreen},
      {"verification.audio-focus", "Forced audio focus is told as unsolicited.", forcesAudioFocus},
      {"verification.video-focus", "Forced video focus is told as unsolicited.", forcesVideoFocus},
      {"verification.sensor", "An injected value of a sensor that was asked for comes at once.",
       pushesSensors},
      {"verification.parked", "A value that nobody asked for is kept back until its sensor is.",
       parksSensors},
      {"verification.key", "An injected key that is bound is reported, with all its fields.",
       reportsBoundKeys},
      {"verification.unbound-key", "An injected key that is no longer bound is not reported.",
       keepsUnboundKeys},
      {"verification.kept-binding", "A refused binding request leaves earlier bindings as they were.",
       keepsBindingsAfterRefusal},
      {"verification.touch", "An injected touch is reported without a binding, pointers in order.",
       reportsTouches},
  };
}

}  // namespace phone::verify
