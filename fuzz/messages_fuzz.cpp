// Whole messages on the open channels of every service. The input is a row of (channel, length, bytes).

#include <algorithm>

#include "EveryService.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  EveryService headUnit;
  headUnit.openAll();
  while (size >= 2) {
    const auto channel = static_cast<unsigned char>(data[0] % (headUnit.services() + 1));
    const std::size_t length = std::min<std::size_t>(data[1], size - 2);
    headUnit.feedMessage(channel, data + 2, length);
    data += 2 + length;
    size -= 2 + length;
  }
  return 0;
}
