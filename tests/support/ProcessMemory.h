#pragma once

#include <fstream>
#include <string>

namespace test {

/// What /proc/self/status tells of this process in kilobytes: "VmRSS", the memory that it takes up now, or
/// "VmHWM", the most that it ever took up. -1 where the system does not tell.
inline long memoryKilobytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(field + ":", 0) == 0) return std::stol(line.substr(field.size() + 1));
  }
  return -1;
}

}  // namespace test
