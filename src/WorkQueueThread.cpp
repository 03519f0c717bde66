#include "WorkQueueThread.h"

#include "WorkQueue.h"

void WorkQueueThread::run() {
  while (!queue->stopping) {
    const shared_ptr<WorkItem> item = queue->dequeueWork();
    if (!item || queue->stopping) return;
    item->run();
    yield();  // a busy thread of the pool leaves the processor to the others
  }
}
