#include "phone/Statistics.h"

#include <gmock/gmock.h>

#include <numeric>

namespace test {
namespace {

using phone::percentile;

TEST(PhoneStatistics, APercentileIsTheSmallestValueThatSoManyDoNotExceed) {
  std::vector<int> values(100);
  std::iota(values.rbegin(), values.rend(), 1);  // 100 down to 1
  EXPECT_EQ(percentile(values, 50), 50);
  EXPECT_EQ(percentile(values, 99), 99);
  EXPECT_EQ(percentile(values, 100), 100);
  EXPECT_EQ(percentile(values, 1), 1);
}

TEST(PhoneStatistics, OfFewValuesItIsOneOfThem) {
  EXPECT_EQ(percentile(std::vector<int>{7}, 1), 7);
  EXPECT_EQ(percentile(std::vector<int>{9, 7, 8}, 50), 8);
  EXPECT_EQ(percentile(std::vector<int>{9, 7, 8}, 99), 9);
}

TEST(PhoneStatistics, OfNoneThereIsNone) { EXPECT_EQ(percentile(std::vector<int>{}, 50), std::nullopt); }

}  // namespace
}  // namespace test
