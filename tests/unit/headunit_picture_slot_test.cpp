#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "headunit/PictureSlot.h"

namespace headunit {
namespace {

using Slot = NewestWins<std::string>;

TEST(HeadunitPictureSlot, IsEmptyAtFirst) {
  Slot slot;
  EXPECT_FALSE(slot.take());
  EXPECT_EQ(slot.dropped(), 0U);
}

TEST(HeadunitPictureSlot, HandsOverOnce) {
  Slot slot;
  EXPECT_FALSE(slot.put("one"));
  EXPECT_EQ(slot.take(), "one");
  EXPECT_FALSE(slot.take());
}

TEST(HeadunitPictureSlot, KeepsTheNewestAndCountsTheOthers) {
  Slot slot;
  EXPECT_FALSE(slot.put("one"));
  EXPECT_TRUE(slot.put("two"));
  EXPECT_TRUE(slot.put("three"));
  EXPECT_EQ(slot.take(), "three");
  EXPECT_EQ(slot.dropped(), 2U);
}

TEST(HeadunitPictureSlot, WaitsForTheNextOne) {
  Slot slot;
  std::thread producer([&] { slot.put("late"); });
  EXPECT_EQ(slot.wait(), "late");
  producer.join();
}

TEST(HeadunitPictureSlot, ClosingEndsAWait) {
  Slot slot;
  std::thread closer([&] { slot.close(); });
  EXPECT_FALSE(slot.wait());
  closer.join();
  EXPECT_TRUE(slot.isClosed());
}

TEST(HeadunitPictureSlot, GivesOutWhatWaitedWhenItWasClosed) {
  Slot slot;
  slot.put("last");
  slot.close();
  EXPECT_EQ(slot.wait(), "last");
  EXPECT_FALSE(slot.wait());
}

TEST(HeadunitPictureSlot, TellsOfEachChange) {
  Slot slot;
  int changes = 0;
  slot.whenChanged([&] { ++changes; });
  slot.put("one");
  slot.put("two");
  slot.close();
  EXPECT_EQ(changes, 3);
}

TEST(HeadunitPictureSlot, LosesNoneBetweenTakenAndDropped) {
  Slot slot;
  constexpr int PUT = 10'000;
  std::thread producer([&] {
    for (int i = 0; i < PUT; ++i) slot.put(std::to_string(i));
    slot.close();
  });
  int taken = 0;
  int before = -1;
  while (const std::optional<std::string> thing = slot.wait()) {
    EXPECT_GT(std::stoi(*thing), before);
    before = std::stoi(*thing);
    ++taken;
  }
  producer.join();
  EXPECT_EQ(before, PUT - 1);
  EXPECT_EQ(static_cast<std::uint64_t>(taken) + slot.dropped(), static_cast<std::uint64_t>(PUT));
}

}  // namespace
}  // namespace headunit
