#pragma once

#include <semaphore.h>

#include "VantryExport.h"

/// A POSIX semaphore, private to the process.
class VANTRY_EXPORT Semaphore {
 public:
  /// Starts at 0.
  Semaphore() { sem_init(&semaphore, 0, 0); }

  /// Starts at `value`, which lets that many `down` calls through.
  explicit Semaphore(int value) { sem_init(&semaphore, 0, static_cast<unsigned int>(value)); }
  ~Semaphore() { sem_destroy(&semaphore); }

  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  /// Any thread; blocks until the count is above 0 and takes one off. Returns false, with nothing taken, when
  /// a signal interrupted the wait: the caller decides whether to wait again.
  [[nodiscard]] bool down() { return sem_wait(&semaphore) == 0; }

  /// Any thread. Adds one to the count and wakes one waiter. Returns false if the count would overflow.
  bool up() { return sem_post(&semaphore) == 0; }

 private:
  sem_t semaphore;
};
