#include "MemoryTransport.h"

#include <algorithm>
#include <chrono>

namespace test {
namespace {

constexpr int FATAL = -1;
constexpr std::chrono::minutes LONG_ENOUGH(1);  // matters only to a test that fails

}  // namespace

MemoryTransport::~MemoryTransport() {
  requestStop();
  waitForExit();
}

void MemoryTransport::gives(const Bytes& data) {
  const std::lock_guard<std::mutex> guard(lock);
  incoming.insert(incoming.end(), data.begin(), data.end());
  changed.notify_all();
}

void MemoryTransport::ends() {
  const std::lock_guard<std::mutex> guard(lock);
  ended = true;
  changed.notify_all();
}

Bytes MemoryTransport::waitsForBytes() {
  std::unique_lock<std::mutex> guard(lock);
  changed.wait_for(guard, LONG_ENOUGH, [this] { return !outgoing.empty() || abortCount > 0; });
  Bytes result;
  result.swap(outgoing);
  return result;
}

Bytes MemoryTransport::takesBytes() {
  const std::lock_guard<std::mutex> guard(lock);
  Bytes result;
  result.swap(outgoing);
  return result;
}

void MemoryTransport::waitsForAbort() {
  std::unique_lock<std::mutex> guard(lock);
  changed.wait(guard, [this] { return abortCount > 0; });
}

void MemoryTransport::abortTransfers() {
  const std::lock_guard<std::mutex> guard(lock);
  ++abortCount;
  changed.notify_all();
}

int MemoryTransport::read(void* data, unsigned int length) {
  const std::size_t most = readCut ? std::min<std::size_t>(length, readCut()) : length;
  std::unique_lock<std::mutex> guard(lock);
  if (++readCount == failingRead) return FATAL;
  changed.wait(guard, [this] { return taken < incoming.size() || ended || abortCount > 0; });
  if (abortCount > 0 || taken == incoming.size()) return FATAL;
  const std::size_t count = std::min(most, incoming.size() - taken);
  std::copy_n(incoming.data() + taken, count, static_cast<std::uint8_t*>(data));
  taken += count;
  if (taken == incoming.size()) {
    incoming.clear();
    taken = 0;
  }
  return static_cast<int>(count);
}

int MemoryTransport::write(void* data, unsigned int length) {
  const std::size_t count = writeCut ? std::min<std::size_t>(length, writeCut()) : length;
  std::unique_lock<std::mutex> guard(lock);
  if (holdingWrites) {
    writeIsHeld = true;
    changed.notify_all();
    changed.wait(guard, [this] { return abortCount > 0; });
  }
  if (++writeCount == failingWrite || abortCount > 0) return FATAL;
  const auto* const from = static_cast<const std::uint8_t*>(data);
  outgoing.insert(outgoing.end(), from, from + count);
  changed.notify_all();
  return static_cast<int>(count);
}

void MemoryTransport::holdsWrites() {
  const std::lock_guard<std::mutex> guard(lock);
  holdingWrites = true;
}

bool MemoryTransport::waitsForHeldWrite() {
  std::unique_lock<std::mutex> guard(lock);
  return changed.wait_for(guard, LONG_ENOUGH, [this] { return writeIsHeld; });
}

int MemoryTransport::reads() const {
  const std::lock_guard<std::mutex> guard(lock);
  return readCount;
}

int MemoryTransport::writes() const {
  const std::lock_guard<std::mutex> guard(lock);
  return writeCount;
}

int MemoryTransport::aborts() const {
  const std::lock_guard<std::mutex> guard(lock);
  return abortCount;
}

}  // namespace test
