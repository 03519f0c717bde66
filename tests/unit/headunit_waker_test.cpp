#include "headunit/Waker.h"

#include <gtest/gtest.h>

namespace headunit {
namespace {

struct HeadunitWaker : testing::Test {
  int pushed = 0;
  bool hasRoom = true;
  Waker waker{[this] {
    pushed += hasRoom ? 1 : 0;
    return hasRoom;
  }};
};

TEST_F(HeadunitWaker, WakesOnceForManyChanges) {
  for (int i = 0; i < 100; ++i) waker.wake();
  EXPECT_EQ(pushed, 1);
  waker.heard();
  waker.wake();
  EXPECT_EQ(pushed, 2) << "what came after the loop has looked";
}

TEST_F(HeadunitWaker, TriesAgainIfTheQueueWasFull) {
  hasRoom = false;
  waker.wake();
  EXPECT_EQ(pushed, 0);
  hasRoom = true;
  waker.wake();
  EXPECT_EQ(pushed, 1);
}

TEST_F(HeadunitWaker, TouchesNoQueueThatHasGone) {
  waker.close();
  waker.wake();
  EXPECT_EQ(pushed, 0);
}

}  // namespace
}  // namespace headunit
