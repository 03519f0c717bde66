#include "IoBuffer.h"

IoBuffer::~IoBuffer() {
  free(data);
  data = nullptr;
  capacity = start = end = 0;
}

void IoBuffer::resize(unsigned int size) {
  if (data == nullptr || capacity != size) {
    free(data);
    allocate(size);
  }
  start = 0;
  end = size;
}

void IoBuffer::allocate(unsigned int size) {
  capacity = size;
  data = static_cast<unsigned char*>(malloc(size));
  start = 0;
  end = size;
}
