#pragma once

#include <Transport.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

#include "headunit/Clock.h"
#include "headunit/FileDescriptor.h"

namespace headunit {

/// A Transport over a connected TCP socket.
class TcpTransport : public Transport {
 public:
  /// `socket` is non-blocking. `stopped` is called on whichever thread stops the link, possibly several
  /// times.
  TcpTransport(VantryReceiver* vantryReceiver, FileDescriptor socket, std::function<void()> stopped);

  /// Blocked transfers end at once, because they wait for an event as well as for the socket; the peer learns
  /// of the end by the shutdown of the socket.
  void abortTransfers() override;
  int read(void* data, unsigned int length) override;
  int write(void* data, unsigned int length) override;

  /// Reader thread: when the bytes that are being handled left the socket.
  TimePoint lastReadAt() const {
    return TimePoint(Clock::duration(lastRead_.load(std::memory_order_relaxed)));
  }
  std::uint64_t bytesRead() const { return bytesRead_; }
  std::uint64_t bytesWritten() const { return bytesWritten_; }

  /// Why the byte stream ended by itself, the first reason if there were several: the peer's doing, or the
  /// system's words. Empty as long as it did not.
  std::string brokenBy() const;

 private:
  bool mayWaitFor(short event);
  int endBecause(int error);

  FileDescriptor socket_;
  WakeEvent aborted_;
  std::function<void()> stopped_;
  std::atomic<Clock::rep> lastRead_;
  std::atomic<std::uint64_t> bytesRead_{0};
  std::atomic<std::uint64_t> bytesWritten_{0};
  std::atomic<int> error_{0};  // -1: the peer closed the stream
};

}  // namespace headunit
