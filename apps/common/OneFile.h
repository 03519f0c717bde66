#pragma once

#include <string>
#include <vector>

namespace programs {

/// A file that the user names, and the word by which he does so, such as "--stats".
struct NamedFile {
  std::string word;
  std::string path;  ///< empty: it is not named
};

/// What is wrong if one file is named twice, through whatever spelling or link: "--stats and --snapshot name
/// one file, PATH". Empty if all are different. What has the same word may be one file, and a character
/// device, such as a terminal, may serve twice. Nothing is opened.
std::string namedTwice(const std::vector<NamedFile>& files);

}  // namespace programs
