#include "headunit/services/VerificationHarness.h"

#include <MessageRouter.h>
#include <spdlog/spdlog.h>

#include <atomic>
#include <mutex>

#include "headunit/services/InputInjection.h"
#include "headunit/services/SensorInjection.h"

namespace headunit {
namespace {

// What is reported may be sent beside other messages of the sensors, so it has to fit in one fragment.
constexpr std::size_t LONGEST_BATCH = 16 * 1000;
// Satellites that the phone has not asked for gather in the library, to go out as one message in the end.
// Whether it has asked cannot be told here.
constexpr int MOST_SATELLITES = 800;

int satellitesIn(const SensorBatch& batch) {
  int count = 0;
  for (const GpsSatelliteData& data : batch.gps_satellite_data()) count += data.satellites_size();
  return count;
}

}  // namespace

/// The way back to the phone, until it is closed. One lock orders the answers and the refusals, since the
/// fragments of two messages that are sent at once would mix: so all that goes out on the channel goes
/// through here. The other lock holds off the end while a picture is taken, which takes its time.
class VerificationHarness::Answers {
 public:
  explicit Answers(const ScreenCamera* camera) : camera_(camera) {}

  void open(VendorExtension* extension) {
    const std::lock_guard lock(sending_);
    extension_ = extension;
  }
  void close() {
    const std::lock_guard lock(capturing_);
    open(nullptr);
  }

  void send(VantryVerificationVendorExtensionMessageId type, const google::protobuf::MessageLite& record) {
    IoBuffer message;
    MessageRouter::marshallProto(static_cast<unsigned short>(type), record, &message);
    sendWhole(message.content(), message.size());
  }

  /// False once this is closed: then it may be said past it.
  bool refuse() {
    unsigned char message[] = {MESSAGE_UNEXPECTED_MESSAGE >> 8, MESSAGE_UNEXPECTED_MESSAGE & 0xFF};
    return sendWhole(message, sizeof message);
  }

  /// Whether no other capture is under way; if so, sendCapture must follow.
  bool beginCapture() { return !underWay_.exchange(true); }

  void sendCapture() {
    const std::lock_guard lock(capturing_);
    VantryVerificationScreenCaptureResponse answer;
    {
      const CaptureEnd end{&underWay_};  // before the answer, after which the phone may ask again
      if (!isOpen()) return;
      answer.set_screen_capture(camera_->png());
    }
    send(MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_RESPONSE, answer);
  }

 private:
  struct CaptureEnd {
    std::atomic<bool>* const underWay;
    ~CaptureEnd() { *underWay = false; }
  };

  bool isOpen() {
    const std::lock_guard lock(sending_);
    return extension_ != nullptr;
  }

  /// False once this is closed.
  bool sendWhole(void* message, unsigned int length) {
    const std::lock_guard lock(sending_);
    if (extension_ == nullptr) return false;
    extension_->sendData(message, length);
    return true;
  }

  const ScreenCamera* const camera_;
  std::atomic<bool> underWay_{false};
  std::mutex capturing_;  // taken first if both are
  std::mutex sending_;
  VendorExtension* extension_ = nullptr;
};

VerificationHarness::VerificationHarness(const Car& car)
    : car_(car), answers_(std::make_shared<Answers>(car.camera)) {}

void VerificationHarness::answerThrough(VendorExtension* extension) { answers_->open(extension); }

void VerificationHarness::release() { answers_->close(); }

bool VerificationHarness::refuse() { return answers_->refuse(); }

int VerificationHarness::onSetSensor(VantryVerificationSetSensor const& message) {
  const int satellites = satellitesIn(message.sensors());
  if (message.sensors().ByteSizeLong() > LONGEST_BATCH || satellites > MOST_SATELLITES - satellites_) {
    spdlog::warn("The phone sets more of the sensors, or more satellites by and by, than can be reported.");
    return STATUS_UNEXPECTED_MESSAGE;
  }
  satellites_ += satellites;
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
  if (!answers_->beginCapture()) {
    spdlog::warn("The phone wants another picture of the screen before it has the last one; it gets none.");
    return STATUS_UNEXPECTED_MESSAGE;
  }
  car_.slowWork->post([answers = answers_] { answers->sendCapture(); });
  return STATUS_SUCCESS;
}

int VerificationHarness::onDisplayInformationRequest(VantryVerificationDisplayInformationRequest const&) {
  const Size size = car_.camera->size();
  VantryVerificationDisplayInformationResponse answer;
  answer.set_native_width(size.width);
  answer.set_native_height(size.height);
  answers_->send(MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_RESPONSE, answer);
  return STATUS_SUCCESS;
}

int VerificationHarness::onAudioFocus(VantryVerificationAudioFocus const& message) {
  car_.controller->setAudioFocus(message.audio_focus_state(), message.unsolicited());
  return STATUS_SUCCESS;
}

}  // namespace headunit
