#pragma once

#include <pthread.h>

#include "VantryExport.h"

/// A POSIX mutex with default attributes: not recursive.
class VANTRY_EXPORT Mutex {
 public:
  Mutex() { pthread_mutex_init(&mutex, nullptr); }
  ~Mutex() { pthread_mutex_destroy(&mutex); }

  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  /// Any thread; blocks. Returns pthread_mutex_lock's result, 0 on success. Use an Autolock instead.
  int lock() { return pthread_mutex_lock(&mutex); }

  /// The locking thread. Returns pthread_mutex_unlock's result, 0 on success.
  int unlock() { return pthread_mutex_unlock(&mutex); }

 private:
  pthread_mutex_t mutex;
};

/// Holds a Mutex from its construction to its destruction, so that every way out of a scope releases it.
class VANTRY_EXPORT Autolock {
 public:
  /// Blocks until `mutex`, which must outlive this object, is locked.
  explicit Autolock(Mutex* mutexToHold) : mutex(mutexToHold) { mutex->lock(); }
  ~Autolock() { mutex->unlock(); }

  Autolock(const Autolock&) = delete;
  Autolock& operator=(const Autolock&) = delete;

 private:
  Mutex* mutex;
};
