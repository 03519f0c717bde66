#pragma once

#include <VantryVerificationVendorExtensionCallbackRouter.h>
#include <spdlog/spdlog.h>

#include "headunit/services/Sparing.h"
#include "headunit/services/VerificationHarness.h"

namespace headunit {

/// Has the harness refuse what is not understood. The link would do that by itself, at once, and so perhaps
/// between the fragments of a picture that another thread sends.
class OrderedRefusals : public IVendorExtensionCallbacks {
 public:
  /// Owns `harness`.
  explicit OrderedRefusals(VerificationHarness* harness)
      : harness_(harness), router_(::shared_ptr<IVantryVerificationCallbacks>(harness)) {}

  int dataAvailable(unsigned char* data, unsigned int length) override {
    const int status = router_.dataAvailable(data, length);
    if (status != STATUS_UNEXPECTED_MESSAGE || !harness_->refuse()) return status;
    spdlog::debug("A message of {} bytes to the verification service was refused.", length);
    return STATUS_SUCCESS;
  }

 private:
  VerificationHarness* const harness_;
  VantryVerificationVendorExtensionCallbackRouter router_;
};

/// The verification extension of one link, with its harness.
class VerificationService : public Sparing<VantryVerificationVendorExtension> {
 public:
  VerificationService(int service, MessageRouter* messages, const VerificationHarness::Car& car)
      : VerificationService(service, messages, new VerificationHarness(car)) {}
  ~VerificationService() override { release(); }

  /// As VerificationHarness's: before the link ends.
  void release() { harness_->release(); }

 private:
  VerificationService(int service, MessageRouter* messages, VerificationHarness* harness)
      : Sparing(service, messages, ::shared_ptr<IVendorExtensionCallbacks>(new OrderedRefusals(harness))),
        harness_(harness) {
    harness->answerThrough(this);
  }

  VerificationHarness* const harness_;  // owned by the extension's callbacks
};

}  // namespace headunit
