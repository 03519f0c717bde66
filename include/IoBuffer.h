#pragma once

#include <cstdlib>

#include "VantryExport.h"

/// A byte range on the heap whose valid part, `data + start` up to `data + end`, can be narrowed without a
/// copy.
///
///     data            data+start            data+end      data+capacity
///      |  header, ...  |  content, size()    |  unused     |
///
/// It owns its storage, which comes from malloc and goes back through free, so that code may hand it to C. It
/// has no lock: one thread at a time. Exhaustion of memory is not survived.
class VANTRY_EXPORT IoBuffer {
 public:
  /// An empty buffer: all four fields zero, no storage.
  IoBuffer() = default;

  /// A buffer of `size` bytes, all of them content, their values undefined.
  explicit IoBuffer(unsigned int size) { allocate(size); }

  /// Frees the storage and zeroes the fields.
  ~IoBuffer();

  IoBuffer(const IoBuffer&) = delete;
  IoBuffer& operator=(const IoBuffer&) = delete;

  /// Replaces the storage by `size` bytes, all of them content, their values undefined. Old content is lost.
  void resize(unsigned int size);

  /// First byte of the content; null in an empty buffer.
  unsigned char* content() const { return data + start; }

  /// Number of content bytes.
  unsigned int size() const { return end - start; }

  unsigned char* data = nullptr;  ///< storage, owned; null in an empty buffer
  unsigned int capacity = 0;      ///< bytes allocated at `data`
  unsigned int start = 0;         ///< offset of the first content byte
  unsigned int end = 0;           ///< offset one past the last content byte

 private:
  void allocate(unsigned int size);
};
