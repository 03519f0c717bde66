#pragma once

#include "IVendorExtensionCallbacks.h"
#include "ProtocolEndpointBase.h"
#include "VantryExport.h"

/// A channel whose bytes the library does not interpret: a private pipe between an application on the phone
/// and the host. A concrete extension derives from it and adds its name to discovery in `addDiscoveryInfo`.
class VANTRY_EXPORT VendorExtension : public ProtocolEndpointBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter(). Keeps a reference to
  /// `extensionCallbacks`, which must point to an object, until destruction.
  VendorExtension(int id, MessageRouter* messageRouter,
                  const shared_ptr<IVendorExtensionCallbacks>& extensionCallbacks);
  ~VendorExtension() override;

  /// Any thread: sends `length` bytes at `data`, copied before the call returns, as one message with nothing
  /// added: a type, where there is one, is the caller's to write. Dropped while no channel is open; a
  /// `length` of 0 sends nothing. While one of more than 16128 bytes is being sent, no other may be: see
  /// ProtocolEndpointBase.
  void sendData(void* data, unsigned int length);

  /// Reader thread: hands all of `buffer`'s content to the callbacks and returns their result.
  int handleRawMessage(unsigned char channel, const shared_ptr<IoBuffer>& buffer) override;

 private:
  shared_ptr<IVendorExtensionCallbacks> callbacks;
};
