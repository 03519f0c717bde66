#pragma once

#include "Mutex.h"
#include "shared_ptr.h"

/// A value that one thread replaces whole while others read it: each reader gets the value as it was at one
/// moment and keeps it for as long as it holds the pointer. The lock is held for the copy of a pointer only.
template <class T>
class Snapshot {
 public:
  Snapshot() : current(new const T()) {}

  Snapshot(const Snapshot&) = delete;
  Snapshot& operator=(const Snapshot&) = delete;

  /// Any thread. The value now in force; never null.
  shared_ptr<const T> get() const {
    Autolock lock(&mutex);
    return current;
  }

  /// Any thread. Readers from now on see `value`, which this takes over; it comes from plain `new`.
  void set(const T* value) {
    shared_ptr<const T> replacement(value);
    shared_ptr<const T> former;  // released after the lock
    Autolock lock(&mutex);
    former = current;
    current = replacement;
  }

 private:
  mutable Mutex mutex;  // guards `current`
  shared_ptr<const T> current;
};
