#include "headunit/services/PhoneService.h"

#include <algorithm>
#include <memory>

#include "headunit/Calls.h"
#include "headunit/Shortened.h"

namespace headunit {
namespace {

// No phone holds more, and no screen shows more.
constexpr int MOST_CALLS = 8;
// Number and name go back to the phone as they are, if they are not longer than any can be.
constexpr std::size_t LONGEST_NAME = 4096;

bool isTooLong(const PhoneCallStruct& call) {
  return call.callerNumber.size() > LONGEST_NAME || call.callerId.size() > LONGEST_NAME;
}

CallView viewOf(const PhoneCallStruct& call) {
  CallView view;
  view.state = call.phoneState;
  view.number = shortened(call.callerNumber);
  view.caller = shortened(call.callerId);
  view.seconds = call.callDurationSeconds;
  return view;
}

}  // namespace

void PhoneService::closed() {
  remember(nullptr, 0);
  newestState_.next();
  context_.cluster->change([](ClusterView& view) { view.phone = {}; });
}

bool PhoneService::hasCall() const {
  const std::lock_guard lock(mutex_);
  return !calls_.empty();
}

bool PhoneService::rings() const { return foremost().state == PhoneStatus_State_INCOMING; }

PhoneService::Call PhoneService::foremost() const {
  const std::lock_guard lock(mutex_);
  const auto found = std::min_element(calls_.begin(), calls_.end(), [](const Call& one, const Call& other) {
    return callRank(one.state) < callRank(other.state);
  });
  return found == calls_.end() ? Call() : *found;
}

bool PhoneService::press(InstrumentClusterInput_InstrumentClusterAction action) {
  if (!endpoint_->isChannelOpen()) return false;
  const Call meant = foremost();
  return endpoint_->reportAction(meant.number, meant.caller, static_cast<unsigned int>(action)) ==
         STATUS_SUCCESS;
}

// Keeps the calls, and counts those that were not there before. A phone lists a call that is over as
// inactive.
void PhoneService::remember(const PhoneCallStruct* calls, std::size_t count) {
  std::vector<Call> now;
  for (std::size_t i = 0; i < count; ++i) {
    if (!isCall(calls[i].phoneState) || isTooLong(calls[i])) continue;
    now.push_back({calls[i].phoneState, calls[i].callerNumber, calls[i].callerId});
  }
  const std::lock_guard lock(mutex_);
  for (const Call& call : now) {
    const bool known = std::any_of(calls_.begin(), calls_.end(), [&call](const Call& earlier) {
      return earlier.number == call.number && earlier.caller == call.caller;
    });
    if (!known) context_.tally->count(&ServiceTotals::calls);
  }
  calls_ = std::move(now);
}

void PhoneService::phoneStatus(const PhoneStatusStruct& status) {
  const std::unique_ptr<const PhoneCallStruct[]> calls(status.calls);
  const auto count = static_cast<std::size_t>(std::min(status.callCount, MOST_CALLS));
  context_.tally->count(&ServiceTotals::phoneStates);
  remember(calls.get(), count);
  PhoneView phone;
  phone.known = true;
  phone.signal = status.signalStrength;
  LateImages images(context_.images);
  for (std::size_t i = 0; i < count; ++i) {
    phone.calls.push_back(viewOf(calls[i]));
    phone.calls[i].portrait =
        images.take(calls[i].callerThumbnail,
                    [i](ClusterView& view, const Image& image) { view.phone.calls[i].portrait = image; });
  }
  const Newest::Ticket ticket = newestState_.next();
  context_.cluster->change([&phone](ClusterView& view) { view.phone = phone; });
  images.follow(ticket);
}

}  // namespace headunit
