// What a stranger can do to a link: the phone's bytes from the first one on, through the version and the TLS
// handshake. The head unit's random numbers are fixed, so a recorded phone gets through to the end.

#include "EveryService.h"
#include "FixedRandom.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

int LLVMFuzzerInitialize(int*, char***) {
  FixedRandom::install();
  return 0;
}

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  EveryService headUnit;
  headUnit.loadsCredentials();
  headUnit.startsUp();
  headUnit.feedStream(data, size);
  return 0;
}
