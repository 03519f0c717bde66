#pragma once

#include "IVantryVerificationCallbacks.h"
#include "IVendorExtensionCallbacks.h"
#include "VantryExport.h"
#include "shared_ptr.h"

/// Turns the bytes of the verification extension into typed calls on a harness. It dispatches and does
/// nothing else.
class VANTRY_EXPORT VantryVerificationVendorExtensionCallbackRouter : public IVendorExtensionCallbacks {
 public:
  /// Keeps a reference to `verificationCallbacks`, which must point to an object, until destruction.
  explicit VantryVerificationVendorExtensionCallbackRouter(
      const shared_ptr<IVantryVerificationCallbacks>& verificationCallbacks);
  ~VantryVerificationVendorExtensionCallbackRouter() override;

  /// Reader thread. `data`: two type bytes and a record. Returns what the harness did;
  /// STATUS_UNEXPECTED_MESSAGE for under two bytes, a type that no operation stands for, and a body that does
  /// not parse.
  int dataAvailable(unsigned char* data, unsigned int length) override;

 private:
  shared_ptr<IVantryVerificationCallbacks> callbacks;
};
