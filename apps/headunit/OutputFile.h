#pragma once

#include <string>

namespace headunit {

/// Makes `bytes` the content of the file at `path`. A regular file, or one that is not there yet, is written
/// beside its place and moved there when it is whole: until then, and on failure, what was there before is
/// still there. Symbolic links stay, and go on leading to it. Anything else, a pipe or a device, stays what
/// it is, and the bytes go into it. Returns false, with the reason in `*error`, if they cannot be written
/// whole.
bool writeFile(const std::string& path, const std::string& bytes, std::string* error);

/// Whether it replaces what is there by what is newer. If not, as with a pipe, each time adds to the last.
bool isReplacedWhenWritten(const std::string& path);

/// Whether writeFile is likely to succeed, as far as can be told without touching what is there. Otherwise
/// the reason is in `*error`.
bool canWriteFile(const std::string& path, std::string* error);

}  // namespace headunit
