#include "phone/program/Usage.h"

namespace phone {

int tellUsage(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = app.remaining(true);
  // What is missing may be what was misspelt.
  const bool isMissing = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
  const int code = isMissing && !unknown.empty() ? app.exit(CLI::ExtrasError(unknown)) : app.exit(error);
  return code == 0 ? 0 : 1;
}

}  // namespace phone
