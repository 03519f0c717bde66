#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>

#include "Bytes.h"
#include "Transport.h"

namespace test {

/// A byte stream in memory between a receiver's two threads and the test. Reads block until there is
/// something to read, as a socket's would. All operations may be called on any thread.
class MemoryTransport : public Transport {
 public:
  explicit MemoryTransport(VantryReceiver* link) : Transport(link) {}
  /// Stops the threads if the test has not.
  ~MemoryTransport() override;

  // The other end of the stream.

  /// Bytes for the reader.
  void gives(const Bytes& data);
  /// The stream ends: once what was given has been read, reads fail.
  void ends();
  /// Bytes written since the last look; blocks until there are some or the transfers have been aborted. None
  /// also if nothing comes for a minute, so that a test whose link hangs fails by itself.
  Bytes waitsForBytes();
  /// Bytes written since the last look, which may be none.
  Bytes takesBytes();
  /// Blocks until abortTransfers has been called.
  void waitsForAbort();

  // How it behaves.

  /// No read or write transfers more than `most` tells; it is asked at the beginning of each. Before `start`.
  void cutsReads(std::function<std::size_t()> most) { readCut = std::move(most); }
  void cutsWrites(std::function<std::size_t()> most) { writeCut = std::move(most); }
  /// The `which`th read or write, counted from 1, fails for good. Before `start`.
  void failsRead(int which) { failingRead = which; }
  void failsWrite(int which) { failingWrite = which; }

  /// From now on a write waits for ever, or until the transfers are aborted.
  void holdsWrites();
  /// Blocks until a write waits; false if that takes for ever.
  bool waitsForHeldWrite();

  int reads() const;
  int writes() const;
  int aborts() const;

  void abortTransfers() override;
  int read(void* data, unsigned int length) override;
  int write(void* data, unsigned int length) override;

 private:
  mutable std::mutex lock;  // guards the rest
  std::condition_variable changed;
  Bytes incoming;
  std::size_t taken = 0;  // of incoming
  Bytes outgoing;
  bool ended = false;
  bool holdingWrites = false;
  bool writeIsHeld = false;
  int readCount = 0;
  int writeCount = 0;
  int abortCount = 0;
  int failingRead = 0;
  int failingWrite = 0;
  std::function<std::size_t()> readCut;
  std::function<std::size_t()> writeCut;
};

}  // namespace test
