#include "common/InputFile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace programs {
namespace {

constexpr std::size_t AT_ONCE = 64 << 10;

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }

 private:
  const int number_;
};

std::string inWords(std::size_t bytes) {
  constexpr std::size_t MIB = 1 << 20;
  if (bytes >= MIB && bytes % MIB == 0) return std::to_string(bytes / MIB) + " MiB";
  return std::to_string(bytes) + " bytes";
}

// False if there is nothing to read, and no end, before the silence has lasted too long.
bool comes(int file, std::chrono::milliseconds silence) {
  pollfd waiting{file, POLLIN, 0};
  int ready = 0;
  do ready = poll(&waiting, 1, static_cast<int>(silence.count()));
  while (ready < 0 && errno == EINTR);
  return ready != 0;
}

// Appends what can be read now. As read: 0 at the end, negative with errno on failure.
ssize_t readMore(int file, std::size_t most, std::string* text) {
  const std::size_t before = text->size();
  text->resize(before + std::min(most, AT_ONCE));
  ssize_t count = 0;
  do count = read(file, text->data() + before, text->size() - before);
  while (count < 0 && errno == EINTR);
  text->resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return count;
}

}  // namespace

std::optional<std::string> readInput(const std::string& path, const InputLimits& limits,
                                     std::string* reason) {
  // A pipe that nobody writes into is not waited for here, but below, where there is a limit.
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  struct stat found {};
  if (file.number() < 0 || fstat(file.number(), &found) != 0) {
    *reason = std::strerror(errno);
    return {};
  }
  const bool isFile = S_ISREG(found.st_mode);
  const bool isTooLarge = isFile && static_cast<unsigned long long>(found.st_size) > limits.bytes;
  // A pipe is at its end when nobody writes into it, and also before anybody does.
  bool mayEnd = !S_ISFIFO(found.st_mode);
  std::string text;
  while (!isTooLarge && text.size() <= limits.bytes) {
    const ssize_t count = readMore(file.number(), limits.bytes + 1 - text.size(), &text);
    if (count == 0 && mayEnd) return text;
    if (count < 0 && errno != EAGAIN) {
      *reason = std::strerror(errno);
      return {};
    }
    if (count <= 0 && !comes(file.number(), limits.silence)) {
      *reason = "it does not end, and nothing comes from it any more";
      return {};
    }
    mayEnd = true;
  }
  *reason = "it has more than " + inWords(limits.bytes) + (isFile ? "" : ", if it ends at all");
  return {};
}

}  // namespace programs
