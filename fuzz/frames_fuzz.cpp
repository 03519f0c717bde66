// A byte stream from the phone, cut into frames as the reader thread does it, against one of each service.

#include "BigEndian.h"
#include "EveryService.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  EveryService headUnit;
  headUnit.openAll();
  constexpr std::size_t HEADER = 4;
  while (size >= HEADER) {
    const int additional = ChannelManager::getAdditionalBytesToRead(data);
    const std::size_t whole = HEADER + static_cast<std::size_t>(additional);
    if (additional < 1 || whole > size) break;
    headUnit.feed(data, whole);
    data += whole;
    size -= whole;
  }
  if (size > 0) headUnit.feed(data, size);  // what a host that frames by itself might hand over
  return 0;
}
