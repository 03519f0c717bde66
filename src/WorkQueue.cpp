#include "WorkQueue.h"

#include <algorithm>

#include "Log.h"

WorkQueue::~WorkQueue() {
  if (threads != nullptr) print_critical_i("[LHU] Workqueue went out of scope without calling shutdown!");
}

bool WorkQueue::start() {
  threads = new WorkQueueThread[static_cast<unsigned int>(std::max(threadCount, 0))];
  bool allStarted = true;
  for (int i = 0; i < threadCount; ++i) {
    threads[i].queue = this;
    if (!threads[i].start()) allStarted = false;
  }
  return allStarted;
}

bool WorkQueue::queueWork(const shared_ptr<WorkItem>& item) {
  {
    Autolock hold(&lock);
    items.push_back(item);
  }
  return available.up();
}

shared_ptr<WorkItem> WorkQueue::dequeueWork() {
  // A wait that a signal interrupted is not told apart from one that ended: what counts is whether there is
  // an item.
  static_cast<void>(available.down());
  Autolock hold(&lock);
  if (items.empty()) return shared_ptr<WorkItem>(static_cast<WorkItem*>(nullptr));
  const shared_ptr<WorkItem> item = items.front();
  items.pop_front();
  return item;
}

void WorkQueue::shutdown() {
  stopping = true;
  for (int i = 0; i < threadCount; ++i) available.up();
  for (int i = 0; i < threadCount; ++i) threads[i].join();
  delete[] threads;
  threads = nullptr;
}
