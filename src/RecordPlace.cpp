#include "RecordPlace.h"

#include <openssl/ssl3.h>

#include <algorithm>
#include <cstring>

namespace {

thread_local RecordPlace* openPlace;
int (*writeToMemory)(BIO*, const char*, int);

}  // namespace

const BIO_METHOD* RecordPlace::memoryBio() {
  static const BIO_METHOD* const method = [] {
    const BIO_METHOD* const memory = BIO_s_mem();
    BIO_METHOD* const own = BIO_meth_new(BIO_TYPE_MEM, "memory buffer");
    if (own == nullptr) return static_cast<const BIO_METHOD*>(nullptr);
    writeToMemory = BIO_meth_get_write(memory);
    BIO_meth_set_write(own, write);
    BIO_meth_set_read(own, BIO_meth_get_read(memory));
    BIO_meth_set_puts(own, BIO_meth_get_puts(memory));
    BIO_meth_set_gets(own, BIO_meth_get_gets(memory));
    BIO_meth_set_ctrl(own, BIO_meth_get_ctrl(memory));
    BIO_meth_set_create(own, BIO_meth_get_create(memory));
    BIO_meth_set_destroy(own, BIO_meth_get_destroy(memory));
    return static_cast<const BIO_METHOD*>(own);
  }();
  return method;
}

void RecordPlace::open(BIO* memory, void* where, unsigned int room) {
  memory_ = memory;
  room_ = filled_ == 0 ? room : 0;
  if (room_ > 0) where_ = static_cast<unsigned char*>(where);
  openPlace = this;
}

void RecordPlace::close() { openPlace = nullptr; }

unsigned int RecordPlace::take(void* destination, unsigned int length) {
  const unsigned int count = std::min(length, filled_);
  if (count > 0 && destination != where_) memmove(destination, where_, count);
  where_ += count;
  filled_ -= count;
  return count;
}

bool RecordPlace::accepts(BIO* memory, const char* data, int size) const {
  // An alert of this thread's own would lie in the way of the record behind it.
  return size > 0 && data[0] == SSL3_RT_APPLICATION_DATA && static_cast<unsigned int>(size) <= room_ &&
         BIO_ctrl_pending(memory) == 0;
}

int RecordPlace::write(BIO* memory, const char* data, int size) {
  BIO_clear_retry_flags(memory);
  RecordPlace* const place = openPlace;
  if (place == nullptr || place->memory_ != memory) return size;  // dropped
  if (!place->accepts(memory, data, size)) return writeToMemory(memory, data, size);
  memcpy(place->where_, data, static_cast<unsigned int>(size));
  place->filled_ = static_cast<unsigned int>(size);
  place->room_ = 0;
  return size;
}
