#ifndef PHONE_PROGRAM_OUTPUTFILE_H
#define PHONE_PROGRAM_OUTPUTFILE_H

#include <string>

namespace phone {

/// Whether writeFile() is likely to succeed, as far as can be told without touching what is there. Otherwise
/// `error` tells why not.
bool canWriteFile(const std::string& path, std::string* error);

/// Makes `text` the content of a file. What was there before stays until the new content is whole, where its
/// folder allows that; links stay and lead to it. A pipe or a device stays what it is, and the text goes into
/// it. On failure `error` tells why.
bool writeFile(const std::string& path, const std::string& text, std::string* error);

}  // namespace phone

#endif
