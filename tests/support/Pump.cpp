#include "Pump.h"

namespace test {

bool pump(phone::PhoneLink* phone, MemoryTransport* transport, const std::function<bool()>& done) {
  for (;;) {
    if (phone->hasOutput()) transport->gives(phone->takeOutput());
    if (done()) return true;
    const Bytes data = transport->waitsForBytes();
    if (data.empty()) return false;  // the transfers were aborted, or hang
    phone->feed(data);
  }
}

}  // namespace test
