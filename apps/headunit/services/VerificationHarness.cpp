#include "headunit/services/VerificationHarness.h"

#include <MessageRouter.h>

#include <mutex>

#include "headunit/services/InputInjection.h"
#include "headunit/services/SensorInjection.h"

namespace headunit {
namespace {

void send(VendorExtension* extension, VantryVerificationVendorExtensionMessageId type,
          const google::protobuf::MessageLite& record) {
  IoBuffer message;
  MessageRouter::marshallProto(static_cast<unsigned short>(type), record, &message);
  extension->sendData(message.content(), message.size());
}

}  // namespace

/// The way back to the phone for what takes its time, until it is closed.
class VerificationHarness::Answers {
 public:
  explicit Answers(const ScreenCamera* camera) : camera_(camera) {}

  void open(VendorExtension* extension) {
    const std::lock_guard lock(mutex_);
    extension_ = extension;
  }
  void close() { open(nullptr); }

  // Locked all the while, so that neither the extension nor the camera goes in the middle of it.
  void sendCapture() {
    const std::lock_guard lock(mutex_);
    if (extension_ == nullptr) return;
    VantryVerificationScreenCaptureResponse answer;
    answer.set_screen_capture(camera_->png());
    send(extension_, MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_RESPONSE, answer);
  }

 private:
  const ScreenCamera* const camera_;
  std::mutex mutex_;
  VendorExtension* extension_ = nullptr;
};

VerificationHarness::VerificationHarness(const Car& car)
    : car_(car), answers_(std::make_shared<Answers>(car.camera)) {}

void VerificationHarness::answerThrough(VendorExtension* extension) {
  extension_ = extension;
  answers_->open(extension);
}

void VerificationHarness::release() { answers_->close(); }

int VerificationHarness::onSetSensor(VantryVerificationSetSensor const& message) {
  reportAll(message.sensors(), car_.sensors);
  return STATUS_SUCCESS;
}

int VerificationHarness::onVideoFocus(VantryVerificationVideoFocus const& message) {
  const VideoFocusMode wanted = message.video_focus_mode();
  const VideoFocusMode other = wanted == VIDEO_FOCUS_MODE_1 ? VIDEO_FOCUS_MODE_2 : VIDEO_FOCUS_MODE_1;
  car_.video->setVideoFocus(message.deny() ? other : wanted, message.unsolicited());
  return STATUS_SUCCESS;
}

int VerificationHarness::onInjectInput(VantryVerificationInjectInput const& message) {
  return reportAll(message.input(), car_.input);
}

int VerificationHarness::onScreenCaptureRequest(VantryVerificationScreenCaptureRequest const&) {
  car_.slowWork->post([answers = answers_] { answers->sendCapture(); });
  return STATUS_SUCCESS;
}

int VerificationHarness::onDisplayInformationRequest(VantryVerificationDisplayInformationRequest const&) {
  const Size size = car_.camera->size();
  VantryVerificationDisplayInformationResponse answer;
  answer.set_native_width(size.width);
  answer.set_native_height(size.height);
  send(extension_, MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_RESPONSE, answer);
  return STATUS_SUCCESS;
}

int VerificationHarness::onAudioFocus(VantryVerificationAudioFocus const& message) {
  car_.controller->setAudioFocus(message.audio_focus_state(), message.unsolicited());
  return STATUS_SUCCESS;
}

}  // namespace headunit
