#include "phone/program/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "phone/Socket.h"

namespace phone {

namespace {

namespace fs = std::filesystem;

// Where a path leads, also if nothing is there yet.
fs::path placeOf(const std::string& path) {
  constexpr int mostLinks = 40;
  std::error_code problem;
  fs::path place = fs::absolute(path, problem);
  for (int i = 0; i < mostLinks && fs::is_symlink(fs::symlink_status(place, problem)); ++i) {
    place = place.parent_path() / fs::read_symlink(place, problem);
  }
  const fs::path folder = fs::weakly_canonical(place.parent_path(), problem);
  return problem ? place : folder / place.filename();
}

bool isFolderForFiles(const fs::path& folder) {
  struct stat found {};
  if (::stat(folder.c_str(), &found) != 0) return false;
  if (!S_ISDIR(found.st_mode)) return errno = ENOTDIR, false;
  return ::access(folder.c_str(), W_OK | X_OK) == 0;
}

bool mayWrite(const std::string& path) {
  struct stat found {};
  if (::stat(path.c_str(), &found) != 0)
    return errno == ENOENT && isFolderForFiles(placeOf(path).parent_path());
  if (S_ISDIR(found.st_mode)) return errno = EISDIR, false;
  return ::access(path.c_str(), W_OK) == 0;
}

// Nobody is waited for who might come to read a pipe.
Socket openFile(const std::string& path) {
  constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  Socket file(::open(path.c_str(), flags, 0666));
  if (file && ::fcntl(file.descriptor(), F_SETFL, 0) != 0) file.close();
  return file;
}

bool writeInto(const fs::path& path, std::string_view text) {
  const Socket file = openFile(path);
  return file && writeAll(file, text);
}

// `before` is what stands there already, if anything does.
bool replace(const fs::path& place, const fs::file_status& before, const std::string& text) {
  const fs::path unfinished = place.parent_path() / (".vantry-phone-" + std::to_string(::getpid()) + ".part");
  errno = 0;
  std::error_code problem;
  bool written = writeInto(unfinished, text);
  int reason = errno;
  if (written && fs::exists(before)) fs::permissions(unfinished, before.permissions(), problem);
  if (written && !problem) fs::rename(unfinished, place, problem);
  if (written && problem) reason = problem.value();
  written = written && !problem;
  if (!written) fs::remove(unfinished, problem);
  errno = reason;
  return written;
}

bool told(bool succeeds, const std::string& path, std::string* error) {
  if (!succeeds) {
    *error = "cannot write " + path + ": " +
             (errno == ENXIO ? "nobody is there to read it" : std::strerror(errno != 0 ? errno : EIO));
  }
  return succeeds;
}

}  // namespace

Socket openToWrite(const std::string& path, std::string* error) {
  Socket file = openFile(path);
  told(static_cast<bool>(file), path, error);
  return file;
}

bool writeAll(const Socket& file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(file.descriptor(), text.data(), text.size());
    if (count > 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

bool canWriteFile(const std::string& path, std::string* error) { return told(mayWrite(path), path, error); }

bool writeFile(const std::string& path, const std::string& text, std::string* error) {
  std::error_code unknown;
  const fs::file_status before = fs::status(path, unknown);
  const bool isReplaceable = !fs::exists(before) || fs::is_regular_file(before);
  const fs::path place = placeOf(path);
  errno = 0;
  const bool written = isReplaceable && isFolderForFiles(place.parent_path()) ? replace(place, before, text)
                                                                              : writeInto(path, text);
  return told(written, path, error);
}

}  // namespace phone
