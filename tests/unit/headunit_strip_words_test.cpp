#include <gtest/gtest.h>

#include "headunit/strip/Words.h"

namespace headunit::strip {
namespace {

TEST(HeadunitStripWords, LeaveTextAsItIs) {
  EXPECT_EQ(drawable("Gr\u00FC\u00DFe \u05E9"), "Gr\u00FC\u00DFe \u05E9");
}

TEST(HeadunitStripWords, PutASignForEachByteThatIsNoText) {
  EXPECT_EQ(drawable("a\xFF\xFE"), "a\uFFFD\uFFFD");
  EXPECT_EQ(drawable("\xC3("), "\uFFFD(");
  EXPECT_EQ(drawable(std::string("a\0b", 3)), "a\uFFFDb");
}

TEST(HeadunitStripWords, KeepToOneLine) { EXPECT_EQ(drawable("a\nb\tc\u2028d\x7F"), "a b c d "); }

TEST(HeadunitStripWords, EndWhereNobodyWouldReadOn) {
  const std::string text = drawable(std::string(10'000, 'x'));
  EXPECT_LT(text.size(), 300U);
  EXPECT_EQ(text.substr(text.size() - 4), "x\u2026");
}

TEST(HeadunitStripWords, TellDistances) {
  EXPECT_EQ(distanceWords(0), "0 m");
  EXPECT_EQ(distanceWords(999), "999 m");
  EXPECT_EQ(distanceWords(1000), "1.0 km");
  EXPECT_EQ(distanceWords(9949), "9.9 km");
  EXPECT_EQ(distanceWords(9950), "10 km");
  EXPECT_EQ(distanceWords(2'147'483'647), "2147484 km");
}

TEST(HeadunitStripWords, TellHowLong) {
  EXPECT_EQ(waitWords(59), "59 s");
  EXPECT_EQ(waitWords(60), "1 min");
  EXPECT_EQ(waitWords(3569), "59 min");
  EXPECT_EQ(waitWords(3600), "1 h 0 min");
  EXPECT_EQ(clockWords(0), "0:00");
  EXPECT_EQ(clockWords(3599), "59:59");
  EXPECT_EQ(clockWords(3723), "1:02:03");
  EXPECT_EQ(clockWords(4'294'967'295U), "1193046:28:15");
}

TEST(HeadunitStripWords, TellFrequencies) {
  EXPECT_EQ(frequencyWords(98'300'000), "98.3 MHz");
  EXPECT_EQ(frequencyWords(810'000), "810 kHz");
}

TEST(HeadunitStripWords, FindInitials) {
  EXPECT_EQ(initials("Ada Winter"), "AW");
  EXPECT_EQ(initials("ada"), "A");
  EXPECT_EQ(initials("Ada de la Mer"), "AM");
  EXPECT_EQ(initials("\u00E9mile"), "\u00C9");
  EXPECT_EQ(initials("+1 555"), "");
  EXPECT_EQ(initials(""), "");
}

}  // namespace
}  // namespace headunit::strip
