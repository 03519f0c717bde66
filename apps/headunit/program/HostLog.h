#pragma once

#include "headunit/RecentLines.h"

namespace headunit {

/// What the library has logged last, through the two functions that this program supplies to it.
RecentLines& libraryLines();

/// Log lines go to stderr, clear of the progress line if there is one.
void setUpLog(bool verbose);

}  // namespace headunit
