#ifndef PHONE_PROGRAM_USAGE_H
#define PHONE_PROGRAM_USAGE_H

#include <CLI/CLI.hpp>

namespace phone {

/// Tells why `app` does not take its command line, or the help that was asked for. Returns the exit status:
/// 0 after a help, else 1.
int tellUsage(const CLI::App& app, const CLI::ParseError& error);

}  // namespace phone

#endif
