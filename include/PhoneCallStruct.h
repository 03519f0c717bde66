#pragma once

#include <string>

/// One call of the phone. A text that the phone left out is empty.
struct PhoneCallStruct {
  int phoneState = 1;  ///< a PhoneStatus_State
  std::string callerNumber;
  std::string callerId;
  std::string callerNumberType;          ///< text, such as what the phone's contacts call it
  unsigned int callDurationSeconds = 0;  ///< since the call began
  std::string callerThumbnail;           ///< raw bytes of an image, zero bytes included
};
