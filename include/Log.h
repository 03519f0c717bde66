#pragma once

#include "VantryExport.h"
#include "protos.pb.h"

extern "C" {

/// Detail: thread exits and messages that do not parse. Supplied by the host process (or by the static
/// library receiver-lib-stderr-log); the shared library leaves the symbol undefined. `format` is printf's;
/// the line that it makes begins "[LHU] ". It and its arguments are valid during the call only. No newline is
/// included. Called on any thread that runs library code, several at once; it must not call back into the
/// library and must not throw.
void print_debug_i(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Milestones of the protocol and failures. Otherwise exactly as print_debug_i.
void print_critical_i(const char* format, ...) __attribute__((format(printf, 1, 2)));
}

/// Texts for log lines. All operations are static, may be called from any thread, and return a string
/// constant that is never freed.
class VANTRY_EXPORT Log {
 public:
  /// The name of `request`, such as "AUDIO_FOCUS_GAIN"; "NOT_VALID" for a number outside the enumeration.
  static const char* getAudioFocusRequestTypeString(AudioFocusRequestType request);

  /// The name of `type`, such as "AUDIO_STREAM_MEDIA"; "NOT_VALID" for a number outside the enumeration.
  static const char* getAudioStreamTypeString(AudioStreamType type);
};
