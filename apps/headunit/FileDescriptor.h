#pragma once

#include <utility>

namespace headunit {

/// Owns a file descriptor.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  ~FileDescriptor() { close(); }

  int get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }
  void close();
  /// It is the caller's to close from now on.
  int release() { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_ = -1;
};

/// Wakes a thread that polls `descriptor()`; stays raised until cleared. Any thread.
class WakeEvent {
 public:
  /// Throws std::system_error when the process has no descriptor left.
  WakeEvent();
  void raise() noexcept;
  void clear() noexcept;
  int descriptor() const { return event_.get(); }

 private:
  FileDescriptor event_;
};

}  // namespace headunit
