#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VerifyHeadUnit.h"
#include "phone/verify/Probe.h"
#include "phone/verify/Report.h"
#include "phone/verify/Runner.h"
#include "phone_head_unit.h"

namespace test {
namespace {

using phone::verify::Check;
using phone::verify::Checks;
using phone::verify::Outcome;
using phone::verify::Probe;
using Conformance = phone::verify::Run;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Gone after its first link, or never there.
struct LeavingHeadUnit : phone::verify::HeadUnit {
  std::unique_ptr<phone::verify::LinkUnderTest> connect(phone::LinkOptions options,
                                                        std::string* error) override {
    if (links-- > 0) return there.connect(std::move(options), error);
    *error = "Connection refused";
    return nullptr;
  }
  MemoryHeadUnit there;
  int links = 0;
};

/// Its user wants to end as soon as a link is there.
struct InterruptedHeadUnit : MemoryHeadUnit {
  std::unique_ptr<phone::verify::LinkUnderTest> connect(phone::LinkOptions options,
                                                        std::string* error) override {
    last = MemoryHeadUnit::connect(std::move(options), error);
    return std::make_unique<Borrowed>(last.get());
  }
  bool interrupted() const override { return last && last->link().state() == phone::LinkState::up; }

  struct Borrowed : phone::verify::LinkUnderTest {
    explicit Borrowed(LinkUnderTest* lender) : lent(lender) {}
    phone::PhoneLink& link() override { return lent->link(); }
    bool runUntil(const std::function<bool()>& done, phone::Micros limit) override {
      return lent->runUntil(done, limit);
    }
    LinkUnderTest* lent;
  };
  std::unique_ptr<phone::verify::LinkUnderTest> last;
};

void needsLink(Probe& probe) { probe.link(); }
void endsLink(Probe& probe) {
  probe.link();
  probe.endLink();
}
void needsToaster(Probe&) { throw phone::verify::NotOffered{"a toaster"}; }

const Checks five = {{"a.ends", "A link comes up.", endsLink},
                     {"a.second", "A second link comes up.", needsLink},
                     {"a.third", "A third link comes up.", needsLink},
                     {"b.fourth", "A fourth link comes up.", needsLink},
                     {"b.toaster", "There is a toaster.", needsToaster}};

Conformance runFive(phone::verify::HeadUnit* headUnit) {
  return phone::verify::runChecks(five, headUnit, phoneCredentials());
}

std::vector<Outcome> outcomes(const Conformance& run) {
  std::vector<Outcome> all;
  for (const auto& result : run.results) all.push_back(result.outcome);
  return all;
}

TEST(VerifyRunner, RunsAllChecksOfAHeadUnitThatLives) {
  MemoryHeadUnit headUnit;
  const Conformance run = runFive(&headUnit);
  EXPECT_THAT(outcomes(run), ElementsAre(Outcome::passed, Outcome::passed, Outcome::passed, Outcome::passed,
                                         Outcome::skipped));
  EXPECT_THAT(run.brokenOff, IsEmpty());
  EXPECT_THAT(summary(run), AllOf(Not(HasSubstr("not run")), Not(HasSubstr("broken off"))));
}

TEST(VerifyRunner, DoesNotRunTheChecksOfAHeadUnitThatIsGone) {
  LeavingHeadUnit headUnit;
  headUnit.links = 1;
  const Conformance run = runFive(&headUnit);
  EXPECT_THAT(outcomes(run), ElementsAre(Outcome::passed, Outcome::failed, Outcome::failed, Outcome::failed,
                                         Outcome::notRun));
  EXPECT_THAT(run.results.back().expected, HasSubstr("Connection refused"));
  EXPECT_THAT(summary(run), AllOf(HasSubstr("3 failed, 0 not offered, 1 not run"),
                                  HasSubstr("The run was broken off: no link came up 3 times in a row, "
                                            "last: Connection refused.")));
}

TEST(VerifyRunner, ReportsWhatWasNotRunAsThat) {
  LeavingHeadUnit headUnit;
  const Conformance run = runFive(&headUnit);
  EXPECT_THAT(tableLine(run.results.back(), false),
              AllOf(HasSubstr("not run"), HasSubstr("Connection refused"), Not(HasSubstr("not offered"))));
  EXPECT_THAT(junitXml(run, "x"), AllOf(HasSubstr("<skipped message=\"not run: no link came up"),
                                        HasSubstr("failures=\"3\" errors=\"0\" skipped=\"2\"")));
  EXPECT_THAT(htmlPage(run, "x"), AllOf(HasSubstr("<tr class=\"notrun\"><td class=\"name\">b.toaster"),
                                        HasSubstr("The run was broken off")));
}

TEST(VerifyRunner, AnInterruptionBreaksTheRunOffWithAGoodBye) {
  InterruptedHeadUnit headUnit;
  const Conformance run = runFive(&headUnit);
  EXPECT_EQ(run.count(Outcome::notRun), 5U);
  EXPECT_EQ(run.brokenOff, "interrupted");
  EXPECT_THAT(headUnit.last->link().end()->words(), HasSubstr("said good-bye, and was answered"));
}

}  // namespace
}  // namespace test
