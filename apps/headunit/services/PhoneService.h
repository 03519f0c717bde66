#pragma once

#include <PhoneStatusEndpoint.h>

#include "headunit/services/Hosted.h"

namespace headunit {

/// Shows the phone's calls and its signal, and hands the cluster's keys to the call that they concern: the
/// one that rings, otherwise the one that is spoken, otherwise the first.
class PhoneService : public IPhoneStatusCallbacks {
 public:
  using Interface = IPhoneStatusCallbacks;

  explicit PhoneService(const ServiceContext& context) : context_(context) {}
  void answerThrough(PhoneStatusEndpoint* endpoint) { endpoint_ = endpoint; }
  void opened() { context_.tally->count(&ServiceTotals::phoneOpened); }
  void closed();

  // Any thread.

  bool hasCall() const;
  bool rings() const;
  /// False if there is no phone to hear it. Without a call the key goes to the phone as such.
  bool press(InstrumentClusterInput_InstrumentClusterAction action);

  void phoneStatus(const PhoneStatusStruct& status) override;

 private:
  struct Call {
    int state = 0;
    std::string number;
    std::string caller;
  };
  Call foremost() const;
  void remember(const PhoneCallStruct* calls, std::size_t count);

  const ServiceContext context_;
  PhoneStatusEndpoint* endpoint_ = nullptr;
  Newest newestState_;
  mutable std::mutex mutex_;
  std::vector<Call> calls_;
};

using PhoneEndpoint = Hosted<PhoneStatusEndpoint, PhoneService>;

}  // namespace headunit
