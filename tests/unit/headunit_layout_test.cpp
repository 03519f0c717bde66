#include <gtest/gtest.h>

#include "headunit/Layout.h"

namespace headunit {
namespace {

void expectRect(const Rect& rect, int x, int y, int width, int height) {
  EXPECT_EQ(rect.x, x);
  EXPECT_EQ(rect.y, y);
  EXPECT_EQ(rect.width, width);
  EXPECT_EQ(rect.height, height);
}

TEST(HeadunitLayout, FillsAWindowOfTheSameProportions) {
  expectRect(fitted({800, 480}, {1600, 960}), 0, 0, 1600, 960);
}

TEST(HeadunitLayout, LeavesBarsAboveAndBelowInATallWindow) {
  expectRect(fitted({1280, 720}, {1280, 1000}), 0, 140, 1280, 720);
}

TEST(HeadunitLayout, LeavesBarsAtTheSidesInAWideWindow) {
  expectRect(fitted({800, 480}, {2000, 480}), 600, 0, 800, 480);
}

TEST(HeadunitLayout, ShrinksAPicture) { expectRect(fitted({1920, 1080}, {960, 600}), 0, 30, 960, 540); }

TEST(HeadunitLayout, IsEmptyForNothing) {
  expectRect(fitted({0, 480}, {800, 480}), 0, 0, 0, 0);
  expectRect(fitted({800, 480}, {800, 0}), 0, 0, 0, 0);
}

TEST(HeadunitLayout, IsEmptyForAPictureThatIsTooFlatForThisWindow) {
  expectRect(fitted({4096, 2}, {896, 720}), 0, 0, 0, 0);
  expectRect(fitted({2, 4096}, {896, 720}), 0, 0, 0, 0);
}

void expectPoint(const Point& point, int x, int y) {
  EXPECT_EQ(point.x, x);
  EXPECT_EQ(point.y, y);
}

TEST(HeadunitPictureView, UndoesTheScaling) {
  const PictureView view({800, 480}, {0, 0}, {1600, 1200});  // twice as large, 120 pixels from the top
  expectPoint(view.toPicture({0, 120}), 0, 0);
  expectPoint(view.toPicture({1, 121}), 0, 0);
  expectPoint(view.toPicture({2, 122}), 1, 1);
  expectPoint(view.toPicture({1599, 1079}), 799, 479);
}

TEST(HeadunitPictureView, UndoesTheMargins) {
  const PictureView view({1280, 720}, {80, 20}, {1200, 700});
  expectRect(view.shown(), 40, 10, 1200, 700);
  expectRect(view.area(), 0, 0, 1200, 700);
  expectPoint(view.toPicture({0, 0}), 40, 10);
  expectPoint(view.toPicture({1199, 699}), 1239, 709);
}

TEST(HeadunitPictureView, FindsTheNearestPlaceFromOutside) {
  const PictureView view({800, 480}, {0, 0}, {1000, 480});
  EXPECT_FALSE(view.isInside({99, 0}));
  EXPECT_TRUE(view.isInside({100, 0}));
  EXPECT_TRUE(view.isInside({899, 479}));
  EXPECT_FALSE(view.isInside({900, 0}));
  expectPoint(view.toPicture({0, -5}), 0, 0);
  expectPoint(view.toPicture({999, 480}), 799, 479);
}

TEST(HeadunitPictureView, IgnoresMarginsThatLeaveNothing) {
  expectRect(withoutMargins({800, 480}, {800, 0}), 0, 0, 800, 480);
}

TEST(HeadunitPictureView, StandsWhereItsSpaceStands) {
  const PictureView view({800, 480}, {0, 0}, {1000, 480}, {50, 20});
  expectRect(view.area(), 150, 20, 800, 480);
  EXPECT_FALSE(view.isInside({149, 20}));
  EXPECT_FALSE(view.isInside({150, 19}));
  expectPoint(view.toPicture({150, 20}), 0, 0);
  expectPoint(view.toPicture({949, 499}), 799, 479);
}

TEST(HeadunitScreenLayout, SharesOutAScreenWithoutAGap) {
  for (const Size size : {Size{800, 480}, {1280, 720}, {1920, 1080}, {333, 777}, {5000, 400}, {1, 1}}) {
    const ScreenLayout layout = splitScreen(size);
    expectRect(layout.picture, 0, 0, layout.strip.x, size.height);
    expectRect(layout.strip, layout.picture.width, 0, size.width - layout.picture.width, size.height);
  }
}

TEST(HeadunitScreenLayout, GivesTheStripThreeTenthsButNoMoreThanItCanUse) {
  EXPECT_EQ(splitScreen({800, 480}).strip.width, 240);
  EXPECT_EQ(splitScreen({1920, 1080}).strip.width, 576);
  EXPECT_EQ(splitScreen({5000, 400}).strip.width, 240);
}

TEST(HeadunitScreenLayout, LeavesAPictureItsSize) {
  const ScreenLayout layout = besidePicture({1280, 720});
  expectRect(layout.picture, 0, 0, 1280, 720);
  expectRect(layout.strip, 1280, 0, 432, 720);
  EXPECT_EQ(layout.size.width, 1712);
  EXPECT_EQ(layout.size.height, 720);
  // The same share in a window of that size.
  expectRect(splitScreen(layout.size).picture, 0, 0, 1280, 720);
}

TEST(HeadunitScreenLayout, TouchesBesideTheStripStillComeInThePicturesCoordinates) {
  const ScreenLayout layout = splitScreen({1712, 720});
  const PictureView view({800, 480}, {0, 0}, {layout.picture.width, layout.picture.height});
  expectRect(view.area(), 40, 0, 1200, 720);
  expectPoint(view.toPicture({1239, 719}), 799, 479);
  EXPECT_FALSE(view.isInside({1240, 0}));
}

TEST(HeadunitPictureView, FindsAPlaceInAPictureThatCannotBeShown) {
  const PictureView view({4096, 2}, {0, 0}, {896, 720});
  EXPECT_EQ(view.area().width, 0);
  expectPoint(view.toPicture({10, 10}), 0, 0);
}

TEST(HeadunitPictureView, ShowsNothingWithoutAPicture) { EXPECT_FALSE(PictureView().isInside({0, 0})); }

}  // namespace
}  // namespace headunit
