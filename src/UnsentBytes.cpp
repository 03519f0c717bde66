#include "UnsentBytes.h"

#include <algorithm>
#include <functional>

namespace {

thread_local const UnsentBytes* innermost = nullptr;

}  // namespace

UnsentBytes::UnsentBytes(const IoBuffer& message, unsigned int count)
    : begin(message.content() + (message.size() - count)),
      end(message.content() + message.size()),
      outer(innermost) {
  innermost = this;
}

UnsentBytes::~UnsentBytes() { innermost = outer; }

unsigned int UnsentBytes::among(const void* body, unsigned int size) {
  const auto* const from = static_cast<const unsigned char*>(body);
  const auto* const to = from + size;
  const std::less<const unsigned char*> before;  // orders pointers into different storage, too
  for (const UnsentBytes* known = innermost; known != nullptr; known = known->outer) {
    const unsigned char* const first = std::max(from, known->begin, before);
    const unsigned char* const last = std::min(to, known->end, before);
    if (before(first, last)) return static_cast<unsigned int>(last - first);
  }
  return 0;
}
