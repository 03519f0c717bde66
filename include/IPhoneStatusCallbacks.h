#pragma once

#include "PhoneStatusStruct.h"
#include "VantryExport.h"

/// What the host hears of the phone's calls. Runs on the reader thread. A callback may send, call
/// MessageRouter::closeChannel and Transport::requestStop; it must not call Transport::waitForExit or
/// VantryReceiver::shutdown, nor destroy the endpoint.
class VANTRY_EXPORT IPhoneStatusCallbacks {
 public:
  virtual ~IPhoneStatusCallbacks() = default;

  /// The phone's calls, all of them each time. `status` is valid during the call, but its array `calls`
  /// passes to the host, also for no calls: the host keeps it for as long as it likes and releases it with
  /// delete[].
  virtual void phoneStatus(const PhoneStatusStruct& status) = 0;
};
