#include "phone/Timers.h"

#include <gmock/gmock.h>

#include <string>

namespace test {
namespace {

using phone::Timers;

struct PhoneTimers : testing::Test {
  Timers timers;
  std::string calls;
  void at(phone::Micros due, char mark) {
    timers.at(due, [this, mark] { calls += mark; });
  }
};

TEST_F(PhoneTimers, CallsWhatIsDueInTheOrderOfItsTimes) {
  at(30, 'c');
  at(10, 'a');
  at(20, 'b');
  at(40, 'd');
  timers.advance(30);
  EXPECT_EQ(calls, "abc");
  EXPECT_EQ(timers.next(), 40);
}

TEST_F(PhoneTimers, CallsOfOneTimeKeepTheirOrder) {
  at(10, 'a');
  at(10, 'b');
  timers.advance(10);
  EXPECT_EQ(calls, "ab");
  EXPECT_EQ(timers.next(), std::nullopt);
}

TEST_F(PhoneTimers, ACancelledCallIsNotMade) {
  const Timers::Id id = timers.after(10, [this] { calls += 'x'; });
  timers.cancel(id);
  timers.cancel(id);
  timers.advance(100);
  EXPECT_EQ(calls, "");
}

TEST_F(PhoneTimers, ACallMayCancelAnotherThatIsDueToo) {
  Timers::Id victim;
  timers.at(1, [this, &victim] { timers.cancel(victim); });
  victim = timers.at(2, [this] { calls += 'x'; });
  at(3, 'a');
  timers.advance(5);
  EXPECT_EQ(calls, "a");
}

TEST_F(PhoneTimers, ACallThatRenewsItselfAtOnceIsMadeOnceAnAdvance) {
  std::function<void()> again = [&] {
    calls += 'r';
    timers.after(0, again);
  };
  timers.at(0, again);
  at(5, 'a');
  timers.advance(5);
  EXPECT_EQ(calls, "ra");
  timers.advance(5);
  EXPECT_EQ(calls, "rar");
}

phone::Micros fineClock() {
  static phone::Micros ticks = 100;
  return ++ticks;
}

TEST_F(PhoneTimers, WithAClockOfItsOwnNowGoesOnBetweenAdvances) {
  Timers live(fineClock);
  EXPECT_EQ(live.now(), 101);
  EXPECT_EQ(live.after(10, [this] { calls += 'a'; }).first, 112);
  live.advance(111);
  EXPECT_EQ(calls, "");
  live.advance(112);
  EXPECT_EQ(calls, "a");
}

TEST_F(PhoneTimers, TheClockNeverGoesBack) {
  timers.advance(50);
  timers.advance(20);
  EXPECT_EQ(timers.now(), 50);
}

}  // namespace
}  // namespace test
