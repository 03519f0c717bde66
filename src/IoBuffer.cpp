#include "IoBuffer.h"

IoBuffer::~IoBuffer() {
  free(data);
  data = nullptr;
  capacity = start = end = 0;
  // Whoever still looks at a buffer that is gone finds it empty, and a second destruction does no harm. The
  // compiler would leave the stores out, for nobody may look: so tell it that somebody does.
  asm volatile("" : : "r"(this) : "memory");
}

void IoBuffer::resize(unsigned int size) {
  free(data);
  allocate(size);
}

void IoBuffer::allocate(unsigned int size) {
  capacity = size;
  data = static_cast<unsigned char*>(malloc(size));
  start = 0;
  end = size;
}
