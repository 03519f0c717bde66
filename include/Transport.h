#pragma once

#include <atomic>

#include "Thread.h"
#include "VantryExport.h"

class Transport;
class VantryReceiver;

/// Reads frames and hands them to the receiver. Part of Transport.
class VANTRY_EXPORT VantryReaderThread : public Thread {
 public:
  void run() override;
  Transport* transport = nullptr;

 private:
  bool readFrame();
};

/// Takes frames from the receiver and writes them. Part of Transport.
class VANTRY_EXPORT VantryWriterThread : public Thread {
 public:
  void run() override;
  Transport* transport = nullptr;
};

/// Joins a VantryReceiver to a byte stream with two threads. The host derives from it and supplies the
/// medium; the library knows none.
///
/// Start: set the receiver up, construct the transport, `start`, and only then VantryReceiver::start. Stop:
/// anyone calls `requestStop` (the host, or a thread whose read or write failed); then the host calls
/// `waitForExit` and VantryReceiver::shutdown, neither of them on the transport's own threads. The derived
/// class's destructor must not run before `waitForExit` has returned.
///
/// A failed read or write ends both threads without a call on IControllerCallbacks: the host sees it by its
/// own abortTransfers being called, and has to treat that as the end of the link.
class VANTRY_EXPORT Transport {
 public:
  /// `vantryReceiver` is not owned and must outlive this object.
  explicit Transport(VantryReceiver* vantryReceiver);
  virtual ~Transport();

  Transport(const Transport&) = delete;
  Transport& operator=(const Transport&) = delete;

  /// Makes any `read` or `write` that is blocked now return soon, and all later ones too. Any thread,
  /// possibly more than once and on several threads at once.
  virtual void abortTransfers() = 0;

  /// Reader thread. Reads up to `length` bytes into `data`. Returns the count, which may be smaller; -2 for
  /// nothing now, call again (at once: do the waiting here); -1 for a fatal error. No other negative number.
  virtual int read(void* data, unsigned int length) = 0;

  /// Writer thread. Writes up to `length` bytes. Results as those of `read`.
  virtual int write(void* data, unsigned int length) = 0;

  /// Once: starts the reader, then the writer, both in any case. Returns true if either started, so that true
  /// may mean one direction only; what is missing shows as a link that does not come up. After false there is
  /// no thread to wait for, and waitForExit returns at once.
  bool start();

  /// Any thread, any number of times, the callbacks included: ends the link's transfers without waiting.
  void requestStop();

  /// The host, on a thread of its own: blocks until both threads have ended.
  void waitForExit();

  /// Whether requestStop has been called. Any thread.
  bool isStopRequested() const { return stopRequested; }

  /// For the reader thread alone. Reads all of `length` bytes, at most INT_MAX; false on a fatal error, a
  /// stop in between, and a larger `length`, of which nothing is read.
  bool readOrFail(void* data, unsigned int length);

  /// For the writer thread alone. Writes all of `length` bytes; false as `readOrFail`.
  bool writeOrFail(void* data, unsigned int length);

 private:
  friend class VantryReaderThread;
  friend class VantryWriterThread;

  VantryReceiver* const receiver;
  VantryReaderThread readerThread;
  VantryWriterThread writerThread;
  std::atomic<bool> stopRequested{false};
};
