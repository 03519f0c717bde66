#include "phone/Outbox.h"

#include <gmock/gmock.h>

#include "Wire.h"

namespace test {
namespace {

using phone::Outbox;

phone::Frame small(std::uint8_t channel, std::uint8_t mark) {
  phone::Frame made;
  made.channel = channel;
  made.flags = 3;
  made.payload = {mark};
  return made;
}

TEST(PhoneOutbox, FramesLeaveInTheOrderOfTheCalls) {
  Outbox outbox(false, nullptr);
  outbox.add(small(3, 1), true);
  outbox.add(small(1, 2), true);
  outbox.addBytes(bytes("EE"));
  outbox.add(small(3, 3), true);
  EXPECT_EQ(Bytes(outbox.take(SIZE_MAX)), bytes("03 03 00 01 01"
                                                "01 03 00 01 02"
                                                "EE"
                                                "03 03 00 01 03"));
  EXPECT_TRUE(outbox.empty());
}

TEST(PhoneOutbox, AnInterleavingOneGivesEachChannelItsTurn) {
  Outbox outbox(true, nullptr);
  for (std::uint8_t mark = 1; mark <= 3; ++mark) outbox.add(small(7, mark), true);
  outbox.add(small(200, 4), true);
  outbox.add(small(0, 5), true);
  EXPECT_EQ(Bytes(outbox.take(SIZE_MAX)), bytes("00 03 00 01 05"
                                                "07 03 00 01 01"
                                                "C8 03 00 01 04"
                                                "07 03 00 01 02"
                                                "07 03 00 01 03"));
}

TEST(PhoneOutbox, AnInterleavingOneStopsAtEnoughSoThatALaterFrameComesEarly) {
  Outbox outbox(true, nullptr);
  for (std::uint8_t mark = 1; mark <= 3; ++mark) outbox.add(small(7, mark), true);
  EXPECT_EQ(Bytes(outbox.take(1)), bytes("07 03 00 01 01"));
  outbox.add(small(9, 9), true);
  EXPECT_EQ(Bytes(outbox.take(6)), bytes("09 03 00 01 09"
                                         "07 03 00 01 02"));
  EXPECT_FALSE(outbox.empty());
}

TEST(PhoneOutbox, WhatIsSettledStandsBeforeALaterFrameOfAnyChannel) {
  Outbox outbox(true, nullptr);
  outbox.add(small(7, 1), true);
  outbox.add(small(7, 2), true);
  outbox.settleAll();
  outbox.add(small(0, 3), true);
  EXPECT_EQ(Bytes(outbox.take(SIZE_MAX)), bytes("07 03 00 01 01"
                                                "07 03 00 01 02"
                                                "00 03 00 01 03"));
}

TEST(PhoneOutbox, TellsHowMuchWaits) {
  Outbox outbox(true, nullptr);
  EXPECT_EQ(outbox.size(), 0u);
  outbox.add(small(7, 1), true);
  outbox.add(small(7, 2), true);
  EXPECT_EQ(outbox.size(), 2u);
  outbox.addBytes(bytes("EE"));
  EXPECT_EQ(outbox.size(), 11u);
  outbox.take(SIZE_MAX);
  EXPECT_EQ(outbox.size(), 0u);
  EXPECT_TRUE(outbox.empty());
}

TEST(PhoneOutbox, RawBytesWaitForWhatWasAddedBefore) {
  Outbox outbox(true, nullptr);
  outbox.add(small(7, 1), true);
  outbox.addBytes(bytes("EE"));
  EXPECT_EQ(Bytes(outbox.take(SIZE_MAX)), bytes("07 03 00 01 01 EE"));
}

}  // namespace
}  // namespace test
