#pragma once

#include <functional>

/// What a piece of code did to the heap and to the payload.
struct Costs {
  double allocations = 0;  ///< calls of malloc and calloc, those of `new` included
  double copies = 0;       ///< copies of at least a payload's size
};

/// Runs `work` on this thread and counts. A copy counts if it moves `payload` bytes or more.
Costs countCosts(unsigned int payload, const std::function<void()>& work);
