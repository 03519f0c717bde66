#include "headunit/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string_view>

#include "headunit/FileDescriptor.h"

namespace headunit {
namespace {

namespace fs = std::filesystem;

constexpr int MOST_LINKS = 40;
constexpr int MOST_NAMES = 100;
constexpr mode_t PERMISSIONS = 0777;

/// Where a path leads.
struct Place {
  fs::path path;
  bool isReplaceable;                 ///< there is a regular file, or nothing yet
  std::optional<mode_t> permissions;  ///< of the file that is there
};

bool isSame(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// The links of the system's that lead to open files need not lead to any name.
Place placeOfFile(const std::string& path, const struct stat& file) {
  std::error_code problem;
  const fs::path real = fs::canonical(path, problem);
  struct stat found {};
  if (!problem && stat(real.c_str(), &found) == 0 && isSame(found, file)) {
    return {real, true, file.st_mode & PERMISSIONS};
  }
  return {path, false, {}};
}

Place placeToBe(fs::path path) {
  std::error_code problem;
  for (int i = 0; i < MOST_LINKS; ++i) {
    const fs::path target = fs::read_symlink(path, problem);
    if (problem) break;
    path = path.parent_path() / target;  // the target alone, if it is a whole path
  }
  return {path, true, {}};
}

// Nothing, with the reason in errno, if it leads nowhere.
std::optional<Place> findPlace(const std::string& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) == 0) {
    if (S_ISREG(found.st_mode)) return placeOfFile(path, found);
    if (!S_ISDIR(found.st_mode)) return Place{path, false, {}};
    errno = EISDIR;
    return {};
  }
  if (errno != ENOENT) return {};
  return placeToBe(path);
}

fs::path folderOf(const Place& place) {
  return place.path.has_parent_path() ? place.path.parent_path() : fs::path(".");
}

bool writeAll(const FileDescriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(file.get(), bytes.data(), bytes.size());
    if (count > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

// A file system may tell only at the end that it takes no more.
bool writeAndClose(FileDescriptor file, const std::string& bytes) {
  return writeAll(file, bytes) && ::close(file.release()) == 0;
}

// A new file in the folder, with the permissions that new files get here.
FileDescriptor createIn(const fs::path& folder, fs::path* path) {
  FileDescriptor file;
  for (int i = 0; !file && i < MOST_NAMES; ++i) {
    *path = folder / (".headunit-" + std::to_string(getpid()) + "-" + std::to_string(i) + ".part");
    file = FileDescriptor(open(path->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file && errno != EEXIST) break;
  }
  return file;
}

bool replace(const Place& place, const std::string& bytes) {
  fs::path unfinished;
  FileDescriptor file = createIn(folderOf(place), &unfinished);
  if (!file) return false;
  const bool isLikeBefore = !place.permissions || fchmod(file.get(), *place.permissions) == 0;
  if (isLikeBefore && writeAndClose(std::move(file), bytes) &&
      std::rename(unfinished.c_str(), place.path.c_str()) == 0) {
    return true;
  }
  const int reason = errno;
  unlink(unfinished.c_str());
  errno = reason;
  return false;
}

// Nobody is waited for who might come to read a pipe.
bool writeInto(const Place& place, const std::string& bytes) {
  FileDescriptor file(open(place.path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  return file && fcntl(file.get(), F_SETFL, 0) == 0 && writeAndClose(std::move(file), bytes);
}

bool mayWrite(const Place& place) {
  if (!place.isReplaceable) return access(place.path.c_str(), W_OK) == 0;
  return access(folderOf(place).c_str(), W_OK | X_OK) == 0;
}

bool told(bool succeeds, const std::string& path, std::string* error) {
  if (!succeeds) {
    *error = "cannot write " + path + ": " +
             (errno == ENXIO ? "nobody is there to read it" : std::strerror(errno));
  }
  return succeeds;
}

}  // namespace

bool writeFile(const std::string& path, const std::string& bytes, std::string* error) {
  const std::optional<Place> place = findPlace(path);
  const bool written = place && (place->isReplaceable ? replace(*place, bytes) : writeInto(*place, bytes));
  return told(written, path, error);
}

bool isReplacedWhenWritten(const std::string& path) {
  const std::optional<Place> place = findPlace(path);
  return !place || place->isReplaceable;
}

bool canWriteFile(const std::string& path, std::string* error) {
  const std::optional<Place> place = findPlace(path);
  return told(place && mayWrite(*place), path, error);
}

}  // namespace headunit
