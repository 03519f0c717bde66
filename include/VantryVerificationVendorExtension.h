#pragma once

#include "VantryExport.h"
#include "VendorExtension.h"

/// The vendor extension through which a test application on the phone drives the head unit. Construct it with
/// a VantryVerificationVendorExtensionCallbackRouter to receive its messages as records; answers go out by
/// `sendData`, two type bytes and a serialized record, all by the host's hand. Of long ones, as a screen
/// capture is, see ProtocolEndpointBase: a lock around the answers does not keep the link's refusals out.
class VANTRY_EXPORT VantryVerificationVendorExtension : public VendorExtension {
 public:
  /// As VendorExtension's.
  VantryVerificationVendorExtension(int id, MessageRouter* messageRouter,
                                    const shared_ptr<IVendorExtensionCallbacks>& extensionCallbacks);
  ~VantryVerificationVendorExtension() override;

  /// Adds the extension's name and the two phone applications that are meant to reach it. The list is data
  /// for the phone; nothing here enforces it.
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;
};
