#pragma once

#include <string>

namespace headunit {

/// A phone's text as long as anybody would read it: no screen has use for more, and laying out megabytes
/// takes seconds. What is left out of it is told by an ellipsis. Any bytes; UTF-8 is cut between its
/// characters.
std::string shortened(const std::string& text);

}  // namespace headunit
