#pragma once

#include "IoBuffer.h"

/// While it lives, the thread that made it knows of the last bytes of a message that they were announced and
/// never sent. They are zero and take up no memory, but a parser copies what a field is said to hold:
/// gigabytes of nothing, for a length and a handful of bytes. A message is parsed while it is delivered, also
/// by callbacks that are given a pointer into it, so this stands beside the message and not in it.
class UnsentBytes {
 public:
  /// `count`: how many bytes at the end of `message`, which outlives this object, were not sent.
  UnsentBytes(const IoBuffer& message, unsigned int count);
  ~UnsentBytes();
  UnsentBytes(const UnsentBytes&) = delete;
  UnsentBytes& operator=(const UnsentBytes&) = delete;

  /// How many of the `size` bytes at `body` were not sent, as far as this thread knows.
  static unsigned int among(const void* body, unsigned int size);

 private:
  const unsigned char* const begin;
  const unsigned char* const end;
  const UnsentBytes* const outer;  // a callback may feed a link of its own
};
