#pragma once

#include "ServiceIds.h"
#include "TamperingRelay.h"
#include "phone/verify/LinkUnderTest.h"

namespace test {

/// What a head unit built from the library, or its host, does wrong. The defaults do nothing wrong.
struct HeadUnitFaults {
  Tamper sent;           ///< Changes frames on their way to the phone.
  Tamper received;       ///< The same on their way to the head unit.
  bool relayed = false;  ///< Frames pass the relay even if nothing tampers with them.
  bool showsCertificate = true;

  bool answersAudioFocus = true;
  bool answersByeBye = true;
  bool answersPairing = true;
  bool endsScans = true;
  bool acknowledgesMedia = true;
  bool acknowledgesTwice = false;
  bool floodsMicrophone = false;
  bool keepsMicrophoneOn = false;
  bool claimsFocusWasUnasked = false;
  bool tunesAnywhere = false;
  bool capturesWrongSize = false;
  bool sendsUnaskedSensors = false;
};

/// Links in memory to head units that are built from the library, all alike, without a thread or a clock.
class MemoryHeadUnit : public phone::verify::HeadUnit {
 public:
  explicit MemoryHeadUnit(HeadUnitFaults faults = {}) : faults_(std::move(faults)) {}
  std::unique_ptr<phone::verify::LinkUnderTest> connect(phone::LinkOptions options,
                                                        std::string* error) override;

 private:
  HeadUnitFaults faults_;
};

}  // namespace test
