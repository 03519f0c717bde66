#pragma once

#include "PhoneCallStruct.h"

/// All calls of the phone at one moment, and its signal.
struct PhoneStatusStruct {
  PhoneCallStruct* calls =
      nullptr;  ///< `callCount` elements, never null; the host's, which releases it by delete[]
  int callCount = 0;
  unsigned int signalStrength = 0;  ///< in units of the phone's own; 0 also if the phone told none
};
