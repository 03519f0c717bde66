#include "headunit/VideoFrame.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace headunit {

void padWithZeros(VideoFrame* frame, unsigned int padding) {
  IoBuffer& buffer = *frame->buffer;
  const unsigned int end = frame->offset + frame->length;
  if (buffer.capacity - end < padding) {
    void* const grown = std::realloc(buffer.data, end + padding);
    if (grown == nullptr) throw std::bad_alloc();
    buffer.data = static_cast<unsigned char*>(grown);
    buffer.capacity = end + padding;
  }
  std::memset(buffer.data + end, 0, padding);
}

}  // namespace headunit
