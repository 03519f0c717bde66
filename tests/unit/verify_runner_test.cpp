#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <future>

#include "VerifyHeadUnit.h"
#include "phone/Socket.h"
#include "phone/verify/Probe.h"
#include "phone/verify/Report.h"
#include "phone/verify/Runner.h"
#include "phone/verify/SocketHeadUnit.h"
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

/// Takes every link, and says a byte on those of its links that are to hear one.
struct MutteringHeadUnit : phone::verify::HeadUnit {
  std::unique_ptr<phone::verify::LinkUnderTest> connect(phone::LinkOptions options, std::string*) override {
    const bool speaks = links < spoken.size() && spoken[links] == 'x';
    ++links;
    return std::make_unique<Muttering>(std::move(options), speaks, &longest);
  }

  struct Muttering : phone::verify::LinkUnderTest {
    Muttering(phone::LinkOptions options, bool isHeard, phone::Micros* longestWait)
        : it(std::move(options)), speaks(isHeard), longest(longestWait) {}
    phone::PhoneLink& link() override { return it; }
    bool runUntil(const std::function<bool()>& done, phone::Micros limit) override {
      *longest = std::max(*longest, limit);
      if (speaks) it.feed({0});
      return done();
    }
    phone::PhoneLink it;
    bool speaks;
    phone::Micros* longest;
  };

  std::string spoken;  ///< A letter a link, x for a byte; silence on all that follow.
  std::size_t links = 0;
  phone::Micros longest = 0;  ///< That anything was waited for.
};

void needsWord(Probe& probe) {
  probe.freshLink(probe.options());
  probe.await(0, MESSAGE_VERSION_REQUEST, "a version request");
}
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

const Checks words = {{"a.first", "It speaks.", needsWord},
                      {"a.second", "It speaks.", needsWord},
                      {"a.third", "It speaks.", needsWord},
                      {"a.fourth", "It speaks.", needsWord},
                      {"a.fifth", "It speaks.", needsWord}};

TEST(VerifyRunner, GivesUpAHeadUnitThatNeverSaysAByte) {
  MutteringHeadUnit headUnit;
  const Conformance run = phone::verify::runChecks(words, &headUnit, phoneCredentials());
  EXPECT_THAT(outcomes(run), ElementsAre(Outcome::failed, Outcome::failed, Outcome::failed, Outcome::notRun,
                                         Outcome::notRun));
  EXPECT_THAT(run.brokenOff, HasSubstr("not a byte came on 3 links in a row"));
  EXPECT_EQ(headUnit.links, 3U);
}

TEST(VerifyRunner, BearsAHeadUnitThatSaysAByteNowAndThen) {
  MutteringHeadUnit headUnit;
  headUnit.spoken = "..x..";
  const Conformance run = phone::verify::runChecks(words, &headUnit, phoneCredentials());
  EXPECT_EQ(run.count(Outcome::failed), words.size());
  EXPECT_THAT(run.brokenOff, IsEmpty());
}

TEST(VerifyRunner, WaitsNoLongerForTheFirstByteThanItIsTold) {
  MutteringHeadUnit headUnit;
  phone::verify::runChecks(words, &headUnit, phoneCredentials(), {}, {1, 20'000});
  EXPECT_EQ(headUnit.links, 1U);
  EXPECT_EQ(headUnit.longest, 20'000);
}

TEST(VerifyRunner, GivesUpAPortThatAcceptsAndSaysNothing) {
  std::string error;
  phone::Wake wake;
  phone::Wake enough;
  const phone::Socket listener = phone::listenOn({"127.0.0.1", 0}, &error);
  ASSERT_TRUE(listener) << error;
  const auto served = std::async(std::launch::async, [&] {
    std::string none;
    while (const phone::Socket peer = phone::acceptOne(listener, &enough, &none)) {
      std::uint8_t byte = 0;
      pollfd polled{peer.descriptor(), POLLIN, 0};
      do {
        ::poll(&polled, 1, -1);
      } while (::recv(peer.descriptor(), &byte, 1, 0) > 0);
    }
  });
  phone::verify::SocketHeadUnit headUnit(phone::localEndpoint(listener), &wake);
  const Conformance run =
      phone::verify::runChecks(phone::verify::allChecks(), &headUnit, phoneCredentials(), {}, {3, 10'000});
  enough.raise();
  EXPECT_EQ(run.count(Outcome::failed), 3U);
  EXPECT_EQ(run.count(Outcome::notRun), run.results.size() - 3);
  EXPECT_THAT(summary(run), HasSubstr("The run was broken off: not a byte came on 3 links in a row"));
}

}  // namespace
}  // namespace test
