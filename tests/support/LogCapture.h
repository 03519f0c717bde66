#pragma once

#include <string>
#include <vector>

namespace test {

/// Collects what the library logs, on any thread, from this object's construction to its destruction. One at
/// a time; what is logged while there is none is dropped.
///     EXPECT_THAT(log.critical(), ElementsAre("[LHU] Sending Framing Error notification!"));
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  /// The texts that came through print_critical_i, oldest first.
  std::vector<std::string> critical() const;
  /// The texts that came through print_debug_i.
  std::vector<std::string> debug() const;
  /// Both in their order, each led by "critical " or "debug ".
  std::vector<std::string> all() const;
  /// Forgets what came so far.
  void clear();
};

}  // namespace test
