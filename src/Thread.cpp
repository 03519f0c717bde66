#include "Thread.h"

#include <sched.h>

#include "Log.h"

Thread::~Thread() {
  if (running) print_critical_i("[LHU] Thread %lx went out of scope while running!", threadId);
}

bool Thread::start() {
  running = pthread_create(&threadId, nullptr, callback, this) == 0;
  return running;
}

bool Thread::join() {
  if (!running) return false;
  if (pthread_join(threadId, nullptr) != 0) return false;
  running = false;
  return true;
}

int Thread::yield() { return sched_yield(); }

bool Thread::setPriority(int priority) {
  sched_param parameters{};
  parameters.sched_priority = priority;
  return pthread_setschedparam(threadId, SCHED_FIFO, &parameters) == 0;
}

bool Thread::setName(const char* name) { return pthread_setname_np(threadId, name) == 0; }

void* Thread::callback(void* thread) {
  static_cast<Thread*>(thread)->run();
  return nullptr;
}
