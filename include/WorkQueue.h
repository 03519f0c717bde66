#pragma once

#include <atomic>
#include <deque>

#include "Mutex.h"
#include "Semaphore.h"
#include "VantryExport.h"
#include "WorkItem.h"
#include "WorkQueueThread.h"
#include "shared_ptr.h"

/// First in, first out: items that a fixed pool of threads runs, for work that would hold up the reader
/// thread. The library queues nothing here; a host makes as many queues as it likes, each for itself.
///
/// created -> start -> shutdown -> destroyed, each once and by one owner. Items are taken in the order in
/// which they were queued; with more than one thread they run side by side, and a later one may finish first.
class VANTRY_EXPORT WorkQueue {
 public:
  /// `count`: threads in the pool. 0 or less makes a queue whose items never run.
  explicit WorkQueue(int count) : threadCount(count) {}

  /// Only after `shutdown`, if `start` was called: otherwise this logs
  /// "[LHU] Workqueue went out of scope without calling shutdown!" and the pool's threads, neither stopped
  /// nor joined, act on a queue that is gone. Items that still wait are released without having run.
  ~WorkQueue();

  WorkQueue(const WorkQueue&) = delete;
  WorkQueue& operator=(const WorkQueue&) = delete;

  /// The owner, once. Returns true if every thread started. On false those that did start serve the queue all
  /// the same, and `shutdown` is owed as ever.
  bool start();

  /// Any thread, at any time: keeps a reference to `item` and wakes a thread of the pool. An item queued
  /// during or after `shutdown` waits for the destructor; a pointer to no object ends the thread that takes
  /// it. Returns false, with the item in the queue but nobody woken, only if the semaphore's count would
  /// overflow.
  bool queueWork(const shared_ptr<WorkItem>& item);

  /// Blocks until there is an item or the queue stops, and takes the oldest item. Returns a pointer to no
  /// object if there is none: the queue stops, or a signal ended the wait. The pool's threads call this.
  shared_ptr<WorkItem> dequeueWork();

  /// The owner, once, after `start`: lets the items that run, or are just being taken, finish; when it
  /// returns, all threads have ended, none runs and none will. Not to be called by an item of this queue.
  /// Items that still wait stay until the destructor.
  void shutdown();

  /// Any thread: whether `shutdown` has been called. A long item may look, and end early.
  bool isStopping() const { return stopping; }

 private:
  friend class WorkQueueThread;

  std::deque<shared_ptr<WorkItem>> items;
  Semaphore available;  // one count an item queued, and one a thread at shutdown
  Mutex lock;           // guards `items`; never held during a wait or an item's run
  WorkQueueThread* threads = nullptr;
  const int threadCount;
  std::atomic<bool> stopping{false};
};
