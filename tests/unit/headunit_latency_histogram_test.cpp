#include <gtest/gtest.h>

#include "headunit/LatencyHistogram.h"

namespace headunit {
namespace {

LatencyHistogram of(int first, int last) {
  LatencyHistogram histogram;
  for (int value = first; value <= last; ++value) histogram.add(microseconds(value));
  return histogram;
}

TEST(HeadunitLatencyHistogram, IsZeroWithoutDurations) {
  const LatencyHistogram histogram;
  EXPECT_EQ(histogram.count(), 0U);
  EXPECT_EQ(histogram.percentile(50).count(), 0);
  EXPECT_EQ(histogram.longest().count(), 0);
}

TEST(HeadunitLatencyHistogram, GivesExactPercentilesByNearestRankUpTo128) {
  const LatencyHistogram histogram = of(1, 100);
  EXPECT_EQ(histogram.percentile(1).count(), 1);
  EXPECT_EQ(histogram.percentile(50).count(), 50);
  EXPECT_EQ(histogram.percentile(99).count(), 99);
  EXPECT_EQ(histogram.percentile(100).count(), 100);
}

TEST(HeadunitLatencyHistogram, IsAtMostASixtyFourthTooHighAboveThat) {
  for (const std::int64_t value :
       {128LL, 129LL, 255LL, 256LL, 1000LL, 4711LL, 1'000'000LL, 3'600'000'000LL, 1LL << 61}) {
    LatencyHistogram histogram;
    histogram.add(microseconds(value));
    histogram.add(microseconds(value * 2 - 1));  // so that the longest does not help
    EXPECT_GE(histogram.percentile(50).count(), value);
    EXPECT_LE(histogram.percentile(50).count(), value + value / 64);
  }
}

TEST(HeadunitLatencyHistogram, NeverExceedsTheLongest) {
  LatencyHistogram histogram;
  histogram.add(microseconds(100'001));
  EXPECT_EQ(histogram.percentile(99).count(), 100'001);
}

TEST(HeadunitLatencyHistogram, TakesNegativeDurationsAsNone) {
  LatencyHistogram histogram;
  histogram.add(microseconds(-5));
  EXPECT_EQ(histogram.count(), 1U);
  EXPECT_EQ(histogram.percentile(99).count(), 0);
}

TEST(HeadunitLatencyHistogram, FindsOneSlowInAHundred) {
  LatencyHistogram histogram = of(1, 98);
  histogram.add(microseconds(50'000));
  histogram.add(microseconds(60'000));
  EXPECT_EQ(histogram.percentile(98).count(), 98);
  EXPECT_NEAR(static_cast<double>(histogram.percentile(99).count()), 50'000, 50'000 / 64.0);
  EXPECT_EQ(histogram.longest().count(), 60'000);
}

}  // namespace
}  // namespace headunit
