#include "headunit/Shortened.h"

#include <gtest/gtest.h>

namespace headunit {
namespace {

constexpr char ELLIPSIS[] = "\u2026";

std::string times(int count, const std::string& text) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

TEST(HeadunitShortened, LeavesWhatIsShort) {
  EXPECT_EQ(shortened(""), "");
  EXPECT_EQ(shortened(times(240, "x")), times(240, "x"));
}

TEST(HeadunitShortened, TellsThatSomethingIsLeftOut) {
  EXPECT_EQ(shortened(times(241, "x")), times(240, "x") + ELLIPSIS);
  EXPECT_EQ(shortened(times(1'000'000, "x")), times(240, "x") + ELLIPSIS);
}

TEST(HeadunitShortened, CutsNoCharacterApart) {
  EXPECT_EQ(shortened("x" + times(120, "\u00E9")), "x" + times(119, "\u00E9") + ELLIPSIS);
  EXPECT_EQ(shortened("x" + times(80, "\u20AC")), "x" + times(79, "\u20AC") + ELLIPSIS);
  EXPECT_EQ(shortened("x" + times(60, "\U0001F600")), "x" + times(59, "\U0001F600") + ELLIPSIS);
}

TEST(HeadunitShortened, CutsWhatIsNoTextAnywhere) {
  EXPECT_EQ(shortened(times(300, "\x80")), times(240, "\x80") + ELLIPSIS);
}

TEST(HeadunitShortened, LeavesWhatItHasShortened) {
  for (int i = 0; i < 4; ++i) {
    const std::string once = shortened(times(i, "x") + times(300, "\u20AC"));
    EXPECT_EQ(shortened(once), once) << i;
  }
}

}  // namespace
}  // namespace headunit
