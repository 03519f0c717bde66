#include "AllocationCount.h"

#include <cstddef>
#include <cstdlib>

// The C library's own operations under other names, which lets a program put counters in front of them.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
}

namespace {

thread_local bool counting = false;
thread_local unsigned int payloadSize = 0;
thread_local Costs costs;

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  if (counting) costs.allocations += 1;
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  if (counting) costs.allocations += 1;
  return __libc_calloc(count, size);
}

void* __real_memcpy(void* destination, const void* source, std::size_t size);

// The linker sends our own code's memcpy here, but not that of shared libraries.
void* __wrap_memcpy(void* destination, const void* source, std::size_t size) {
  if (counting && size >= payloadSize) costs.copies += 1;
  return __real_memcpy(destination, source, size);
}
}

Costs countCosts(unsigned int payload, const std::function<void()>& work) {
  payloadSize = payload - 2;  // a media message's content may be copied without its type
  costs = Costs();
  counting = true;
  work();
  counting = false;
  return costs;
}
