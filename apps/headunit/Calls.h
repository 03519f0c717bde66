#pragma once

#include <cstddef>
#include <vector>

#include "headunit/Cluster.h"

namespace headunit {

/// How much a call matters, by the phone's number for its state: one that rings comes before one that is
/// spoken, then the others, and at last those that are over. Of equal ones the first counts.
int callRank(int phoneState);

/// Whether the phone still has it; a call that is over is listed once more.
bool isCall(int phoneState);

/// Whether any of them waits to be taken.
bool rings(const PhoneView& phone);

/// All calls, those first that matter most, so that the one that the keys concern is seen before all others.
std::vector<CallView> byRank(std::vector<CallView> calls);

/// How many of them are still calls.
std::size_t callsIn(const std::vector<CallView>& calls);

}  // namespace headunit
