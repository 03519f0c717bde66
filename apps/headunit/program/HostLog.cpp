#include "headunit/program/HostLog.h"

#include <Log.h>
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>

namespace headunit {
namespace {

constexpr std::size_t LONGEST_LINE = 1024;

// The library calls from anywhere, and nothing that is thrown may get into it: a line for which there is no
// memory is lost.
template <class Act>
void throwingNothing(const Act& act) {
  try {
    act();
  } catch (...) {
  }
}

}  // namespace

RecentLines& libraryLines() {
  static RecentLines lines;
  return lines;
}

void setUpLog(bool verbose) {
  auto logger = spdlog::stderr_color_mt("headunit");
  const bool progressLine = isatty(STDERR_FILENO) == 1 && !verbose;
  logger->set_pattern(progressLine ? "\r\033[K%H:%M:%S.%e %^%l%$ %v" : "%H:%M:%S.%e %^%l%$ %v");
  logger->set_level(verbose ? spdlog::level::debug : spdlog::level::info);
  spdlog::set_default_logger(logger);
}

}  // namespace headunit

// The library's milestones are details here, too: what a user has to know of a link, the program says itself.

void print_critical_i(const char* format, ...) {
  char line[headunit::LONGEST_LINE];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  headunit::throwingNothing([&line] {
    headunit::libraryLines().add(line);
    spdlog::debug("{}", line);
  });
}

void print_debug_i(const char* format, ...) {
  char line[headunit::LONGEST_LINE];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  headunit::throwingNothing([&line] { spdlog::debug("{}", line); });
}
