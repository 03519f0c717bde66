#include <gtest/gtest.h>

#include "headunit/strip/StripPainter.h"

namespace headunit {
namespace {

Bitmap drawn(const std::string& awaited) {
  ClusterView view;
  view.phone.awaited = awaited;
  return drawStrip(view, {384, 720}, TimePoint()).bitmap;
}

/// How many pixels of one bitmap are others in the second one, from one row on and up to another.
int differences(const Bitmap& one, const Bitmap& other, int fromRow, int toRow) {
  int count = 0;
  const auto width = one.size.width;
  for (int i = fromRow * width; i < toRow * width; ++i) {
    const auto at = static_cast<std::size_t>(i);
    count += one.pixels[at] != other.pixels[at] ? 1 : 0;
  }
  return count;
}

// At this size the line ends at row 36.
TEST(HeadunitStatusLine, TellsWhereAPhoneIsExpected) {
  const Bitmap nowhere = drawn("");
  const Bitmap here = drawn("on 127.0.0.1:7411");
  EXPECT_GT(differences(nowhere, here, 0, 37), 100);
  EXPECT_EQ(differences(nowhere, here, 37, 720), 0);
  EXPECT_GT(differences(drawn("on 127.0.0.1:7412"), here, 0, 37), 0) << "the address is there to its end";
}

TEST(HeadunitStatusLine, TellsOfThePhoneThatHasLeftTheRestOfTheStrip) {
  ClusterView view;
  view.phone.known = true;
  const Bitmap before = drawStrip(view, {384, 720}, TimePoint()).bitmap;
  view.phone.awaited = "on 127.0.0.1:7411";
  EXPECT_EQ(drawStrip(view, {384, 720}, TimePoint()).bitmap.pixels, before.pixels);
}

TEST(HeadunitStatusLine, TellsOfAPhoneThatTellsNothingOfItself) {
  const Bitmap nobody = drawn("");
  ClusterView view;
  view.ofPhone = true;
  const Bitmap connected = drawStrip(view, {384, 720}, TimePoint()).bitmap;
  EXPECT_GT(differences(nobody, connected, 0, 37), 100) << "it is not said that there is none";
  EXPECT_EQ(differences(nobody, connected, 37, 720), 0);
  view.phone.awaited = "on 127.0.0.1:7411";
  EXPECT_EQ(drawStrip(view, {384, 720}, TimePoint()).bitmap.pixels, connected.pixels)
      << "nor when it has left its last picture";
  view.phone.known = true;
  EXPECT_GT(differences(connected, drawStrip(view, {384, 720}, TimePoint()).bitmap, 0, 37), 0)
      << "a signal is not made up";
}

}  // namespace
}  // namespace headunit
