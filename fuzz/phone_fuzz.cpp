// What a head unit can do to the phone simulator: its bytes, on a link without TLS, read by the frame
// decoder, the link itself and every service that the phone opens.

#include "PhoneInMemory.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  PhoneInMemory phone;
  phone.feed(data, size);
  return 0;
}
