#include "headunit/Printable.h"

#include <gtest/gtest.h>

namespace headunit {
namespace {

TEST(HeadunitPrintable, LeavesWordsAsTheyAre) {
  EXPECT_EQ(printable(""), "");
  EXPECT_EQ(printable("Élodie's phone \u00A0\u20AC"), "Élodie's phone \u00A0\u20AC");
}

TEST(HeadunitPrintable, LetsNoControlCharacterThrough) {
  EXPECT_EQ(printable("a\x1b[2Jb\r\n\x7f"), "a?[2Jb???");
  EXPECT_EQ(printable(std::string("a\0b", 3)), "a?b");
  EXPECT_EQ(printable("a\xC2\x9B"
                      "2J\xC2\x80\xC2\x9F"),
            "a?2J??");
}

TEST(HeadunitPrintable, IsNotEndless) {
  const std::string text = printable(std::string(1'000'000, 'x'));
  EXPECT_LT(text.size(), 300U);
  EXPECT_EQ(text.substr(text.size() - 4), "x\u2026");
}

}  // namespace
}  // namespace headunit
