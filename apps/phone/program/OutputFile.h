#ifndef PHONE_PROGRAM_OUTPUTFILE_H
#define PHONE_PROGRAM_OUTPUTFILE_H

#include <string>
#include <string_view>

#include "phone/Socket.h"

namespace phone {

/// Whether writeFile() is likely to succeed, as far as can be told without touching what is there. Otherwise
/// `error` tells why not.
bool canWriteFile(const std::string& path, std::string* error);

/// Makes `text` the content of a file. What was there before stays until the new content is whole, where its
/// folder allows that; links stay and lead to it. A pipe or a device stays what it is, and the text goes into
/// it. On failure `error` tells why.
bool writeFile(const std::string& path, const std::string& text, std::string* error);

/// Creates or empties a file to write to bit by bit. Nobody is waited for who might come to read a pipe. On
/// failure it is invalid, and `error` tells why.
Socket openToWrite(const std::string& path, std::string* error);
/// Writes all of `text`; false, with the reason in errno, if that is impossible.
bool writeAll(const Socket& file, std::string_view text);

}  // namespace phone

#endif
