#include "headunit/FileDescriptor.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace headunit {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
  if (this == &other) return *this;
  close();
  descriptor_ = std::exchange(other.descriptor_, -1);
  return *this;
}

void FileDescriptor::close() {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}

WakeEvent::WakeEvent() : event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!event_) throw std::system_error(errno, std::generic_category(), "eventfd");
}

void WakeEvent::raise() noexcept {
  const std::uint64_t one = 1;
  // It fails only when the count is full, and then it is raised all the more.
  [[maybe_unused]] const ssize_t written = write(event_.get(), &one, sizeof one);
}

void WakeEvent::clear() noexcept {
  std::uint64_t count = 0;
  [[maybe_unused]] const ssize_t got = read(event_.get(), &count, sizeof count);
}

}  // namespace headunit
