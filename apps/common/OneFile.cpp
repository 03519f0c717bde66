#include "common/OneFile.h"

#include <sys/stat.h>

#include <filesystem>

namespace programs {
namespace {

namespace fs = std::filesystem;

constexpr int MOST_LINKS = 40;

// Where a file would come to be that is not there yet: the links may be.
fs::path placeOf(fs::path path) {
  std::error_code problem;
  for (int i = 0; i < MOST_LINKS; ++i) {
    const fs::path target = fs::read_symlink(path, problem);
    if (problem) break;
    path = path.parent_path() / target;  // the target alone, if it is a whole path
  }
  const fs::path whole = fs::absolute(path, problem);
  const fs::path place = fs::weakly_canonical(whole, problem);
  return problem ? whole : place;
}

bool isOne(const std::string& first, const std::string& second) {
  struct stat one {};
  struct stat other {};
  const bool isThere = stat(first.c_str(), &one) == 0;
  if (isThere != (stat(second.c_str(), &other) == 0)) return false;
  if (!isThere) return placeOf(first) == placeOf(second);
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino && !S_ISCHR(one.st_mode);
}

}  // namespace

std::string namedTwice(const std::vector<NamedFile>& files) {
  for (std::size_t i = 0; i < files.size(); ++i) {
    for (std::size_t j = i + 1; j < files.size(); ++j) {
      if (files[i].path.empty() || files[j].path.empty() || files[i].word == files[j].word) continue;
      if (!isOne(files[i].path, files[j].path)) continue;
      return files[i].word + " and " + files[j].word + " name one file, " + files[i].path;
    }
  }
  return {};
}

}  // namespace programs
