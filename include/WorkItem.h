#pragma once

#include "VantryExport.h"

/// A piece of work for a WorkQueue. The host derives from it and hands it over in a shared_ptr; the last
/// reference to go deletes it, on whichever thread that happens.
class VANTRY_EXPORT WorkItem {
 public:
  virtual ~WorkItem() = default;

  /// The work. Called at most once for each time that it is queued, on one of the queue's threads, with no
  /// lock held: it may queue further work, but must not shut its own queue down. Queued twice, it may run on
  /// two threads at once.
  virtual void run() = 0;
};
