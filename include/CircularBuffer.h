#pragma once

#include "VantryExport.h"

/// A byte ring over storage that its user supplies. Nothing in the library uses it; it is offered to hosts,
/// for example between a callback and an audio device. It has no lock: two threads need one around it.
class VANTRY_EXPORT CircularBuffer {
 public:
  /// Stores up to `length` bytes from `source`, as many as fit. Returns the number stored: 0 without storage
  /// or when the ring is full. A short store is not an error.
  unsigned int put(void* source, unsigned int length);

  /// Takes up to `length` of the oldest bytes into `destination`. Returns the number taken: 0 without storage
  /// or when the ring is empty.
  unsigned int get(void* destination, unsigned int length);

  int capacity = 0;                  ///< size of the ring in bytes; above 0 where there is storage
  int used = 0;                      ///< bytes now held; always the truth about the fill level
  unsigned int readOffset = 0;       ///< offset of the oldest byte, 0 to `capacity`, both included
  unsigned char* storage = nullptr;  ///< `capacity` bytes, owned by the user; null means no storage

 private:
  void store(const unsigned char* source, unsigned int position, unsigned int count);
  void take(unsigned char* destination, unsigned int count);
};
