#include "headunit/Calls.h"

#include <protos.pb.h>

#include <algorithm>

namespace headunit {

int callRank(int phoneState) {
  switch (phoneState) {
    case PhoneStatus_State_INCOMING: return 0;
    case PhoneStatus_State_IN_CALL: return 1;
    case PhoneStatus_State_INACTIVE: return 3;
    default: return 2;
  }
}

bool isCall(int phoneState) { return phoneState != PhoneStatus_State_INACTIVE; }

bool rings(const PhoneView& phone) {
  return std::any_of(phone.calls.begin(), phone.calls.end(),
                     [](const CallView& call) { return call.state == PhoneStatus_State_INCOMING; });
}

std::vector<CallView> byRank(std::vector<CallView> calls) {
  std::stable_sort(calls.begin(), calls.end(), [](const CallView& one, const CallView& other) {
    return callRank(one.state) < callRank(other.state);
  });
  return calls;
}

std::size_t callsIn(const std::vector<CallView>& calls) {
  return static_cast<std::size_t>(
      std::count_if(calls.begin(), calls.end(), [](const CallView& call) { return isCall(call.state); }));
}

}  // namespace headunit
