#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace programs {

/// How much is read of a file that somebody names, and how long it may keep one waiting.
struct InputLimits {
  std::size_t bytes = 0;
  std::chrono::milliseconds silence{5000};  ///< for pipes and the like, of which nothing comes
};

/// All that is in the file at `path`, or that comes out of the pipe or device there until it ends. Nothing,
/// with a sentence without its full stop in `*reason`, if it cannot be read or exceeds a limit: what is too
/// large, or never ends, is not taken into memory.
std::optional<std::string> readInput(const std::string& path, const InputLimits& limits, std::string* reason);

}  // namespace programs
