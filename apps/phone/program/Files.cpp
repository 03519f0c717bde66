#include "phone/program/Files.h"

#include "phone/Credentials.h"
#include "phone/program/OutputFile.h"

namespace phone {

namespace {

std::string checkName(const std::string& path) {
  if (path.empty()) return "the name is empty";
  // An option that lacks its name has taken the next one for it.
  return path.compare(0, 2, "--") == 0 ? "a name is missing before " + path : "";
}

}  // namespace

CLI::Option* addFile(CLI::App* app, const std::string& option, std::string* path, const std::string& meaning,
                     const std::string& type) {
  return app->add_option(option, *path, meaning)->check(checkName)->type_name(type);
}

void addCredentials(CLI::App* app, std::string* folder) {
  addFile(app, "--credentials", folder, "folder of root.pem, phone.pem and phone.key", "DIR")
      ->capture_default_str();
}

void refuseOneFileForTwo(const NamedFiles& written, NamedFiles read, const std::string& credentials) {
  for (const std::string& path : credentialFiles(credentials)) read.push_back({"--credentials", path});
  std::string fault = programs::namedTwice(written);
  for (std::size_t i = 0; fault.empty() && i < read.size(); ++i) {
    NamedFiles files = written;
    files.push_back(read[i]);
    fault = programs::namedTwice(files);
  }
  if (!fault.empty()) throw CLI::ValidationError(fault + "; give each its own");
}

bool canWriteAll(const NamedFiles& files, std::string* error) {
  for (const programs::NamedFile& file : files) {
    if (file.path.empty() || canWriteFile(file.path, error)) continue;
    *error += "; name another file with " + file.word;
    return false;
  }
  return true;
}

}  // namespace phone
