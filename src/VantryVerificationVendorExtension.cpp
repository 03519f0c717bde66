#include "VantryVerificationVendorExtension.h"

VantryVerificationVendorExtension::VantryVerificationVendorExtension(
    int id, MessageRouter* messageRouter, const shared_ptr<IVendorExtensionCallbacks>& extensionCallbacks)
    : VendorExtension(id, messageRouter, extensionCallbacks) {}

VantryVerificationVendorExtension::~VantryVerificationVendorExtension() = default;

void VantryVerificationVendorExtension::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  VendorExtensionService* const extension = service->mutable_vendor_extension_service();
  extension->set_service_name("com.corvane.drovia.projection.protocol.VantryVerificationVendorExtension");
  extension->add_package_white_list("com.corvane.drovia.projection.spindrel.receivertest");
  extension->add_package_white_list("com.corvane.drovia.projection.localsink");
}
