#pragma once

#include <VendorExtension.h>
#include <spdlog/spdlog.h>

#include "headunit/services/Hosted.h"

namespace headunit {

/// The service's own messages, as an example of what an extension does with its bytes: it sends each back.
class EchoService : public IVendorExtensionCallbacks {
 public:
  using Interface = IVendorExtensionCallbacks;

  explicit EchoService(const ServiceContext& context) : context_(context) {}
  void answerThrough(VendorExtension* endpoint) { endpoint_ = endpoint; }
  void opened() { context_.tally->count(&ServiceTotals::echoOpened); }
  void closed() {}

  /// A message's length is only what the phone announced: a few bytes on the wire can claim gigabytes, and
  /// none are made of them here.
  static constexpr unsigned int LONGEST_ECHO = 1024 * 1024;

  int dataAvailable(unsigned char* data, unsigned int length) override {
    if (length > LONGEST_ECHO) {
      spdlog::warn("The phone wants {} bytes echoed; {} are the most.", length, LONGEST_ECHO);
      return STATUS_UNEXPECTED_MESSAGE;
    }
    context_.tally->count(&ServiceTotals::echoes);
    endpoint_->sendData(data, length);
    return STATUS_SUCCESS;
  }

 private:
  const ServiceContext context_;
  VendorExtension* endpoint_ = nullptr;
};

class EchoEndpoint : public Hosted<VendorExtension, EchoService> {
 public:
  using Hosted::Hosted;

  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override {
    Service* const service = response->add_services();
    service->set_id(id());
    service->mutable_vendor_extension_service()->set_service_name("com.example.headunit.echo");
  }
};

}  // namespace headunit
