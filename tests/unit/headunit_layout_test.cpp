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

}  // namespace
}  // namespace headunit
