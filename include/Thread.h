#pragma once

#include <pthread.h>

#include "VantryExport.h"

/// A POSIX thread with one operation to override. Its owner starts it, asks `run` to end by a flag of the
/// derived class, joins it, and only then destroys it; those calls are the owner's alone.
///
/// created -> start -> started -> (run returns) -> finished -> join -> joined, from where `start` is allowed
/// again.
class VANTRY_EXPORT Thread {
 public:
  Thread() = default;

  /// Neither stops nor joins: a Thread that is still owed a `join` logs
  /// "[LHU] Thread %lx went out of scope while running!", which marks a fault of the owner.
  virtual ~Thread();

  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  /// The body of the thread, on the new thread.
  virtual void run() = 0;

  /// Starts the thread under the default policy. Returns false if the system could not create it. Not while a
  /// `join` is owed, which would be lost.
  bool start();

  /// Blocks until `run` has returned. Returns false at once if no join is owed, and false if the join failed,
  /// which is then still owed.
  bool join();

  /// The thread's identifier; meaningful between a successful `start` and `join`.
  pthread_t id() const { return threadId; }

  /// Lets other threads run; affects the calling thread, whichever object it is called on. sched_yield's
  /// result.
  int yield();

  /// After `start`, any thread. Switches the thread to SCHED_FIFO at `priority`. Returns false, and changes
  /// nothing, if `priority` is out of range or the process lacks the right.
  bool setPriority(int priority);

  /// After `start`, any thread. `name` has at most 15 characters and is copied. Returns false if refused.
  bool setName(const char* name);

 private:
  static void* callback(void* thread);

  pthread_t threadId{};
  bool running = false;  // a join is owed, whether or not run() still executes
};
