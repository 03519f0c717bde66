// The measure that tests of many messages go by: it must see what they are there to find.

#include "Numbered.h"

#include <gtest/gtest.h>

#include <set>

namespace test {
namespace {

/// What is said when contents of these numbers come one after the other.
std::string wordsFor(std::initializer_list<std::uint64_t> numbers) {
  Arrivals arrivals;
  for (const std::uint64_t number : numbers) {
    arrivals.takes(numberedContent(number) == numberedContent(arrivals.due()));
  }
  return arrivals.words();
}

TEST(ArrivalsTest, CountsWhatIsDue) {
  EXPECT_EQ(wordsFor({}), "0 as due");
  EXPECT_EQ(wordsFor({0, 1, 2}), asDue(3));
}

TEST(ArrivalsTest, NamesTheFirstThatIsLostRepeatedOrOvertaken) {
  EXPECT_EQ(wordsFor({0, 2, 3}), "in place of number 1 came something else, of 3 that came");
  EXPECT_EQ(wordsFor({0, 1, 1}), "in place of number 2 came something else, of 3 that came");
  EXPECT_EQ(wordsFor({1, 0}), "in place of number 0 came something else, of 2 that came");
}

TEST(NumberedContentTest, IsOfEvenLengthAndNoOtherNumbers) {
  std::set<Bytes> all;
  bool fillsMoreThanOneFrame = false;
  for (std::uint64_t number = 0; number < 500; ++number) {
    const Bytes content = numberedContent(number);
    EXPECT_EQ(content.size() % 2, 0U);
    fillsMoreThanOneFrame = fillsMoreThanOneFrame || content.size() > 16128;
    all.insert(content);
  }
  EXPECT_EQ(all.size(), 500U);
  EXPECT_TRUE(fillsMoreThanOneFrame);
}

}  // namespace
}  // namespace test
