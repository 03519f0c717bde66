#include <gtest/gtest.h>

#include "../unit/phone_head_unit.h"
#include "LogCapture.h"
#include "VerifyHeadUnit.h"
#include "phone/verify/Runner.h"

// Every check holds for a head unit that is built from the library.

namespace test {
namespace {

using phone::verify::Outcome;
using phone::verify::Result;

std::string complaints(const phone::verify::Run& run) {
  std::string text;
  for (const Result& result : run.results) {
    if (result.outcome == Outcome::passed) continue;
    text += result.name + ": expected " + result.expected + ", came " + result.came + "\n";
  }
  return text;
}

phone::verify::Run runAgainst(const HeadUnitFaults& faults) {
  MemoryHeadUnit headUnit(faults);
  return phone::verify::runChecks(phone::verify::allChecks(), &headUnit, phoneCredentials());
}

TEST(VerifyUnbroken, EveryCheckIsPassedAndNoneSkipped) {
  const auto run = runAgainst({});
  EXPECT_EQ(run.count(Outcome::passed), run.results.size()) << complaints(run);
  EXPECT_GE(run.results.size(), 100u);
}

TEST(VerifyUnbroken, EveryCheckIsPassedThroughARelayThatChangesNothing) {
  HeadUnitFaults none;
  none.relayed = true;
  const auto run = runAgainst(none);
  EXPECT_EQ(run.count(Outcome::passed), run.results.size()) << complaints(run);
}

TEST(VerifyUnbroken, ChecksHaveNamesOfTheirOwn) {
  std::set<std::string> names;
  for (const phone::verify::Check& check : phone::verify::allChecks()) {
    EXPECT_TRUE(names.insert(check.name).second) << check.name << " stands twice";
  }
}

}  // namespace
}  // namespace test
