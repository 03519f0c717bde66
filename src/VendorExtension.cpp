#include "VendorExtension.h"

VendorExtension::VendorExtension(int id, MessageRouter* messageRouter,
                                 const shared_ptr<IVendorExtensionCallbacks>& extensionCallbacks)
    : ProtocolEndpointBase(id, messageRouter, true), callbacks(extensionCallbacks) {}

VendorExtension::~VendorExtension() = default;

int VendorExtension::handleRawMessage(unsigned char, const shared_ptr<IoBuffer>& buffer) {
  return callbacks->dataAvailable(buffer->content(), buffer->size());
}

void VendorExtension::sendData(void* data, unsigned int length) { sendMessage(data, length); }
