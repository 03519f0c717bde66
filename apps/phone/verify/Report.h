#ifndef PHONE_VERIFY_REPORT_H
#define PHONE_VERIFY_REPORT_H

#include <string>

#include "phone/verify/Runner.h"

namespace phone::verify {

/// One line of the table on the terminal; a failed check brings lines of its own.
std::string tableLine(const Result& result, bool coloured);
/// "93 passed, 2 failed, 4 not offered, in 8.1 s", and a sentence more if the run was broken off.
std::string summary(const Run& run);
/// What `title` tells, the head unit's address, stands in both files.
std::string junitXml(const Run& run, const std::string& title);
/// One page that needs no other file.
std::string htmlPage(const Run& run, const std::string& title);

}  // namespace phone::verify

#endif
