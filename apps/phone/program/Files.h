#ifndef PHONE_PROGRAM_FILES_H
#define PHONE_PROGRAM_FILES_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "common/OneFile.h"

namespace phone {

using NamedFiles = std::vector<programs::NamedFile>;

/// Adds an option that names a file or a folder. To leave the name out is wrong usage, and so is an empty
/// one, mostly that of a variable which is not set.
CLI::Option* addFile(CLI::App* app, const std::string& option, std::string* path, const std::string& meaning,
                     const std::string& type);
/// Adds --credentials.
void addCredentials(CLI::App* app, std::string* folder);

/// Throws CLI::ValidationError if a file that is written is named once more: by another option of `written`,
/// by one of `read`, or as a file of the folder `credentials`. What is only read may be named twice.
void refuseOneFileForTwo(const NamedFiles& written, NamedFiles read, const std::string& credentials);

/// Whether all that is named can be written. Otherwise `error` is a sentence about the first that cannot, and
/// nothing has been touched.
bool canWriteAll(const NamedFiles& files, std::string* error);

}  // namespace phone

#endif
