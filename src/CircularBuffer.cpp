#include "CircularBuffer.h"

#include <cstring>

unsigned int CircularBuffer::put(void* source, unsigned int length) {
  if (storage == nullptr) return 0;
  const auto size = static_cast<unsigned int>(capacity);
  const unsigned int space = size - static_cast<unsigned int>(used);
  const unsigned int count = length < space ? length : space;
  const auto* from = static_cast<const unsigned char*>(source);

  unsigned int position = (readOffset + static_cast<unsigned int>(used)) % size;
  unsigned int left = count;
  if (position + count > size) {
    const unsigned int untilWrap = size - position;
    store(from, position, untilWrap);
    from += untilWrap;
    left -= untilWrap;
    position = 0;
  }
  if (left > 0) store(from, position, left);
  return count;
}

unsigned int CircularBuffer::get(void* destination, unsigned int length) {
  if (storage == nullptr) return 0;
  const auto size = static_cast<unsigned int>(capacity);
  const unsigned int count =
      length < static_cast<unsigned int>(used) ? length : static_cast<unsigned int>(used);
  auto* to = static_cast<unsigned char*>(destination);

  unsigned int left = count;
  if (count + readOffset > size) {
    const unsigned int untilWrap = size - readOffset;
    take(to, untilWrap);
    to += untilWrap;
    left -= untilWrap;
    readOffset = 0;
  }
  // A read up to the very end leaves readOffset at `capacity`; the next wrap's first copy is then of zero
  // bytes.
  if (left > 0) take(to, left);
  return count;
}

void CircularBuffer::store(const unsigned char* source, unsigned int position, unsigned int count) {
  memcpy(storage + position, source, count);
  used += static_cast<int>(count);
}

void CircularBuffer::take(unsigned char* destination, unsigned int count) {
  memcpy(destination, storage + readOffset, count);
  readOffset += count;
  used -= static_cast<int>(count);
}
