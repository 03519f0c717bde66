#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "headunit/Layout.h"
#include "headunit/Tcp.h"
#include "headunit/TouchScript.h"

namespace headunit {

/// What the command line says.
struct Options {
  std::optional<Address> connect;  ///< otherwise it listens
  Address listen{"127.0.0.1", 7411};
  std::string credentials;
  bool headless = false;
  Size margins;
  std::string audioOut;    ///< empty: the sound device
  std::string microphone;  ///< empty: the machine's own
  std::string drive;       ///< empty: the one that is built in
  std::optional<TouchScript> touches;
  bool autoPair = false;
  bool verification = false;
  bool browse = false;
  std::string snapshot;
  std::uint64_t exitAfterFrames = 0;  ///< 0: goes on
  std::string stats;
  bool once = false;
  bool verbose = false;
};

/// Reads the command line. Nothing if the program is to end now, with `*exitStatus`: 0 after --help, 1 after
/// a mistake, which has been told on stderr.
std::optional<Options> parseOptions(int argc, const char* const* argv, int* exitStatus);

}  // namespace headunit
