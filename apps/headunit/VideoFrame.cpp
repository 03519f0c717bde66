#include "headunit/VideoFrame.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace headunit {

void padWithZeros(VideoFrame* frame, unsigned int padding) {
  IoBuffer& buffer = *frame->buffer;
  const std::size_t end = static_cast<std::size_t>(frame->offset) + frame->length;
  const std::size_t needed = end + padding;
  if (buffer.capacity < needed) {
    if (needed > std::numeric_limits<unsigned int>::max()) throw std::bad_alloc();
    void* const grown = std::realloc(buffer.data, needed);
    if (grown == nullptr) throw std::bad_alloc();
    buffer.data = static_cast<unsigned char*>(grown);
    buffer.capacity = static_cast<unsigned int>(needed);
  }
  std::memset(buffer.data + end, 0, padding);
}

}  // namespace headunit
