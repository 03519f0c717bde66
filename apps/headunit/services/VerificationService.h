#pragma once

#include <VantryVerificationVendorExtensionCallbackRouter.h>

#include "headunit/services/VerificationHarness.h"

namespace headunit {

/// The verification extension of one link, with its harness.
class VerificationService : public VantryVerificationVendorExtension {
 public:
  VerificationService(int service, MessageRouter* messages, const VerificationHarness::Car& car)
      : VerificationService(service, messages, new VerificationHarness(car)) {}
  ~VerificationService() override { release(); }

  /// As VerificationHarness's: before the link ends.
  void release() { harness_->release(); }

 private:
  VerificationService(int service, MessageRouter* messages, VerificationHarness* harness)
      : VantryVerificationVendorExtension(service, messages, callbacksFor(harness)), harness_(harness) {
    harness->answerThrough(this);
  }

  static ::shared_ptr<IVendorExtensionCallbacks> callbacksFor(VerificationHarness* harness) {
    return ::shared_ptr<IVendorExtensionCallbacks>(new VantryVerificationVendorExtensionCallbackRouter(
        ::shared_ptr<IVantryVerificationCallbacks>(harness)));
  }

  VerificationHarness* const harness_;  // owned by the extension's callbacks
};

}  // namespace headunit
