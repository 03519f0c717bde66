#pragma once

#include <Controller.h>
#include <IVantryVerificationCallbacks.h>
#include <InputSource.h>
#include <SensorSource.h>
#include <VantryVerificationVendorExtension.h>
#include <VideoSink.h>

#include <memory>

#include "headunit/ScreenCamera.h"
#include "headunit/SlowWork.h"

namespace headunit {

/// Lets a test application on the phone play the driver and the vehicle of one link, and look at the screen.
class VerificationHarness : public IVantryVerificationCallbacks {
 public:
  /// What it acts on. All of it outlives the harness.
  struct Car {
    SensorSource* sensors = nullptr;
    InputSource* input = nullptr;
    VideoSink* video = nullptr;
    Controller* controller = nullptr;
    SlowWork* slowWork = nullptr;
    const ScreenCamera* camera = nullptr;
  };
  explicit VerificationHarness(const Car& car);
  ~VerificationHarness() override { release(); }

  /// Before the link starts: where answers go. It must stay as long as it calls, and until `release`.
  void answerThrough(VendorExtension* extension);

  /// Nothing that takes its time is answered any more. Waits for an answer that is being made. May be called
  /// again.
  void release();

  /// Tells the phone that its message was not understood, without getting between the fragments of an answer.
  /// False after `release`, when nothing is said here and no answer is on its way any more. Any thread.
  bool refuse();

  /// Refused if it is too long for one report, or if it is one satellite too many for the whole link.
  int onSetSensor(VantryVerificationSetSensor const& message) override;
  /// A focus that is to be denied is the other one's.
  int onVideoFocus(VantryVerificationVideoFocus const& message) override;
  int onInjectInput(VantryVerificationInjectInput const& message) override;
  /// The answer follows when the picture has been compressed, which is done elsewhere. Until then no other
  /// is taken: a request for one is refused.
  int onScreenCaptureRequest(VantryVerificationScreenCaptureRequest const& message) override;
  int onDisplayInformationRequest(VantryVerificationDisplayInformationRequest const& message) override;
  int onAudioFocus(VantryVerificationAudioFocus const& message) override;

 private:
  class Answers;

  const Car car_;
  int satellites_ = 0;                      // set so far; reader thread
  const std::shared_ptr<Answers> answers_;  // shared with work that may come late
};

}  // namespace headunit
