#pragma once

#include "protos.pb.h"

/// Whether `action`, which comes from the host, is a key of the instrument cluster. The generated setter ends
/// the process for any other number; three endpoints refuse it before.
[[nodiscard]] inline bool isInstrumentClusterAction(unsigned int action) {
  return InstrumentClusterInput_InstrumentClusterAction_IsValid(static_cast<int>(action));
}

/// Fills `input` with an `action` that has been found valid.
inline void setInstrumentClusterAction(unsigned int action, InstrumentClusterInput* input) {
  input->set_action(static_cast<InstrumentClusterInput_InstrumentClusterAction>(action));
}
