#include "OutputPlace.h"

OutputPlace::OutputPlace(BIO* memory) : memory_(memory) {
  BIO_get_mem_ptr(memory_, &gathered_);
  static_cast<void>(BIO_set_close(memory_, BIO_NOCLOSE));  // else it would free what it is moved away from
}

OutputPlace::~OutputPlace() { BUF_MEM_free(gathered_); }

bool OutputPlace::begin(void* where, std::size_t room, std::size_t expected) {
  if (BIO_ctrl_pending(memory_) > 0) return false;
  placed_.data = static_cast<char*>(where);
  placed_.max = room;
  placed_.length = 0;
  BIO_set_mem_buf(memory_, &placed_, BIO_NOCLOSE);
  spareClearing(&placed_, expected);
  return true;
}

bool OutputPlace::holds(const void* where, std::size_t length) const {
  return where == placed_.data && length == BIO_ctrl_pending(memory_);
}

void OutputPlace::end() {
  placed_.data = nullptr;
  gathered_->length = 0;  // what has been fetched from it would count once more
  BIO_set_mem_buf(memory_, gathered_, BIO_NOCLOSE);
}
