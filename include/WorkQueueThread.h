#pragma once

#include "Thread.h"
#include "VantryExport.h"

class WorkQueue;

/// One of the threads of a WorkQueue's pool, which makes, starts, joins and destroys it.
class VANTRY_EXPORT WorkQueueThread : public Thread {
 public:
  /// Takes items and runs them, one after another, until the queue stops. An item that is taken while the
  /// queue stops is dropped unrun.
  void run() override;

  /// Not owned; set before `start`.
  WorkQueue* queue = nullptr;
};
