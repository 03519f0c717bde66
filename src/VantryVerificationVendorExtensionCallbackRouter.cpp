#include "VantryVerificationVendorExtensionCallbackRouter.h"

#include "Message.h"
#include "MessageRouter.h"

namespace {

/// The body of a message and who is to have it.
struct Delivery {
  IVantryVerificationCallbacks* harness;
  unsigned char* body;
  unsigned int size;

  template <class Record>
  int to(int (IVantryVerificationCallbacks::*operation)(Record const&), const char* file = __builtin_FILE(),
         int line = __builtin_LINE()) const {
    Record record;
    if (!readRecord(body, size, &record, file, line)) return STATUS_UNEXPECTED_MESSAGE;
    return (harness->*operation)(record);
  }
};

}  // namespace

VantryVerificationVendorExtensionCallbackRouter::VantryVerificationVendorExtensionCallbackRouter(
    const shared_ptr<IVantryVerificationCallbacks>& verificationCallbacks)
    : callbacks(verificationCallbacks) {}

VantryVerificationVendorExtensionCallbackRouter::~VantryVerificationVendorExtensionCallbackRouter() = default;

int VantryVerificationVendorExtensionCallbackRouter::dataAvailable(unsigned char* data, unsigned int length) {
  using Harness = IVantryVerificationCallbacks;
  if (!isLongEnough(length, MESSAGE_TYPE_SIZE)) return STATUS_UNEXPECTED_MESSAGE;
  const Delivery deliver{callbacks.get(), data + MESSAGE_TYPE_SIZE, length - MESSAGE_TYPE_SIZE};
  switch (MessageRouter::extractType(data)) {
    case MESSAGE_VANTRY_VERIFICATION_SET_SENSOR: return deliver.to(&Harness::onSetSensor);
    case MESSAGE_VANTRY_VERIFICATION_VIDEO_FOCUS: return deliver.to(&Harness::onVideoFocus);
    case MESSAGE_VANTRY_VERIFICATION_AUDIO_FOCUS: return deliver.to(&Harness::onAudioFocus);
    case MESSAGE_VANTRY_VERIFICATION_INJECT_INPUT: return deliver.to(&Harness::onInjectInput);
    case MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_REQUEST:
      return deliver.to(&Harness::onScreenCaptureRequest);
    case MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_REQUEST:
      return deliver.to(&Harness::onDisplayInformationRequest);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}
