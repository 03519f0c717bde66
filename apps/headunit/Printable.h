#pragma once

#include <string>

namespace headunit {

/// A phone's words for one line of a terminal: without control characters, which could move its cursor or
/// fake a line of ours, and not endless.
std::string printable(const std::string& words);

}  // namespace headunit
