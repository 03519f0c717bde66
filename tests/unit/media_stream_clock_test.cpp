#include "phone/media/StreamClock.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace test::media {
namespace {

using phone::StreamClock;

constexpr AVRational TICK{1, 90000};
constexpr std::int64_t FRAME = 3000;  // ticks: 30 a second

struct PhoneStreamClock : testing::Test {
  StreamClock clock{{30, 1}, false};
  StreamClock broadcast{{30, 1}, true};
};

TEST_F(PhoneStreamClock, BeginsAtZeroWhereverTheFileBegins) {
  EXPECT_EQ(clock.stamp(900'000, FRAME, TICK), 0);
  EXPECT_EQ(clock.stamp(900'000 + FRAME, FRAME, TICK), 33'333);
  EXPECT_EQ(clock.endUs(), 66'666);
}

TEST_F(PhoneStreamClock, WithoutTimesGoesOnByTheDuration) {
  EXPECT_EQ(clock.stamp(AV_NOPTS_VALUE, 2 * FRAME, TICK), 0);
  EXPECT_EQ(clock.stamp(AV_NOPTS_VALUE, 0, TICK), 66'667);
  EXPECT_EQ(clock.stamp(AV_NOPTS_VALUE, 0, TICK), 100'000)
      << "the frame rate serves where no duration is told";
}

TEST_F(PhoneStreamClock, NeverRunsBackwards) {
  clock.stamp(0, FRAME, TICK);
  EXPECT_EQ(clock.stamp(90'000, FRAME, TICK), 1'000'000);
  EXPECT_EQ(clock.stamp(45'000, FRAME, TICK), 1'000'000);
}

TEST_F(PhoneStreamClock, ANewPassStartsWhereTheLastOneEnded) {
  clock.stamp(90'000, FRAME, TICK);
  clock.stamp(180'000, FRAME, TICK);
  clock.startAgain();
  EXPECT_EQ(clock.stamp(90'000, FRAME, TICK), 1'033'333);
  EXPECT_EQ(clock.stamp(180'000, FRAME, TICK), 2'033'333);
}

TEST_F(PhoneStreamClock, APassLastsTenMillisecondsAtLeast) {
  for (int pass = 0; pass < 3; ++pass) {
    EXPECT_EQ(clock.stamp(0, 1, TICK), pass * 10'000);
    clock.startAgain();
  }
}

TEST_F(PhoneStreamClock, LeapsOfABroadcastAreSmoothedOver) {
  broadcast.stamp(0, FRAME, TICK);
  EXPECT_EQ(broadcast.stamp(90'000 * 3600, FRAME, TICK), 33'333) << "an hour ahead";
  EXPECT_EQ(broadcast.stamp(90'000 * 3600 + FRAME, FRAME, TICK), 66'666);
  EXPECT_EQ(broadcast.stamp(0, FRAME, TICK), 99'999) << "and back";
}

TEST_F(PhoneStreamClock, AFilesOwnLongPausesAreKept) {
  clock.stamp(0, FRAME, TICK);
  EXPECT_EQ(clock.stamp(90'000 * 60, FRAME, TICK), 60'000'000);
}

TEST_F(PhoneStreamClock, OtherTimesAreOnTheSameScale) {
  clock.stamp(90'000, FRAME, TICK);
  EXPECT_EQ(clock.convert(90'000 + 2 * FRAME, TICK), 66'667);
}

TEST_F(PhoneStreamClock, NumbersBeyondReasonDoNoHarm) {
  constexpr std::int64_t LOWEST = std::numeric_limits<std::int64_t>::min() + 1;
  constexpr std::int64_t HIGHEST = std::numeric_limits<std::int64_t>::max();
  constexpr AVRational YEARS{2'000'000'000, 1};
  std::int64_t before = 0;
  for (StreamClock* each : {&clock, &broadcast}) {
    before = 0;
    for (const std::int64_t time : {HIGHEST, LOWEST, std::int64_t{0}, HIGHEST}) {
      const std::int64_t now = each->stamp(time, HIGHEST, YEARS);
      EXPECT_GE(now, before);
      before = now;
    }
    each->startAgain();
    EXPECT_GE(each->stamp(LOWEST, HIGHEST, YEARS), before);
  }
}

}  // namespace
}  // namespace test::media
