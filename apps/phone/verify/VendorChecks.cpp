// What can be said of a vendor's own extension without knowing its messages.
#include "phone/verify/Probe.h"
#include "phone/verify/TypeNames.h"

namespace phone::verify {

namespace {

Service plainExtension(Probe& probe) {
  return probe.find(
      [](const Service& one) {
        return one.has_vendor_extension_service() &&
               one.vendor_extension_service().service_name() != verificationName;
      },
      "a vendor extension other than the verification extension");
}

// What it says to that is its own affair, a refusal too.
void bearsStrangeBytes(Probe& probe) {
  const std::uint8_t channel = probe.open(plainExtension(probe));
  const Bytes strange = messageBytes(0x7abc, Bytes(30, 0x55));
  for (const std::size_t fragment : {maxFragment, std::size_t{8}}) {
    probe.link().sendMessage(channel, strange, flagEncrypted, fragment);
    probe.expectAlive();
  }
  probe.close(channel);
  probe.expectAlive();
}

}  // namespace

Checks vendorChecks() {
  return {
      {"vendor.strange-bytes",
       "Bytes that a vendor's extension cannot know, whole or in pieces, leave the link alive.",
       bearsStrangeBytes},
  };
}

}  // namespace phone::verify
