#ifndef PHONE_VERIFY_RUNNER_H
#define PHONE_VERIFY_RUNNER_H

#include <functional>

#include "phone/verify/Check.h"
#include "phone/verify/LinkUnderTest.h"
#include "phone/verify/Probe.h"

namespace phone::verify {

enum class Outcome {
  passed,
  failed,
  skipped,  ///< The head unit does not offer what the check is about.
  notRun    ///< Nobody knows: the run was broken off before, or while it ran.
};

struct Result {
  std::string name;
  std::string meaning;
  Outcome outcome = Outcome::passed;
  std::string expected;  ///< If failed; if skipped, what is not offered; if not run, why.
  std::string came;
  Micros took = 0;
};

struct Run {
  std::vector<Result> results;
  std::string brokenOff;  ///< Why it was; empty if it came to its end.
  std::size_t count(Outcome outcome) const;
  const Result* find(const std::string& name) const;
};

/// How much is borne of a head unit that is dead.
struct Endurance {
  int deadLinks = 3;  ///< In a row.
  Micros firstByte = bringUpLimit;
};

/// Called after each check.
using OnResult = std::function<void(const Result&)>;

/// Runs the checks one after the other. The run is broken off when the user wants to end, and once no link
/// comes up several times in a row, or nothing at all is heard on as many, so that a dead head unit does not
/// cost a deadline a check.
Run runChecks(const Checks& checks, HeadUnit* headUnit, const Credentials& credentials,
              const OnResult& onResult = {}, const Endurance& endurance = {});

/// The checks whose name begins with one of `prefixes`; all of them if there are none.
Checks choose(const Checks& checks, const std::vector<std::string>& prefixes);

}  // namespace phone::verify

#endif
