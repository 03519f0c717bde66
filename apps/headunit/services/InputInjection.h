#pragma once

#include <InputSource.h>

namespace headunit {

/// Reports all that a record holds, as if it had been made by hand. Any thread. Returns what the last report
/// that failed returned: STATUS_INVALID_KEYCODE where the phone has not bound a key; otherwise
/// STATUS_SUCCESS.
int reportAll(const InputReport& report, InputSource* input);

}  // namespace headunit
