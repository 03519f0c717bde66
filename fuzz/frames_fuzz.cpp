// A byte stream from the phone, cut into frames as the reader thread does it, against one of each service.

#include "EveryService.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  EveryService headUnit;
  headUnit.openAll();
  headUnit.feedStream(data, size);
  return 0;
}
