#include <gtest/gtest.h>

#include "phone/services/CarPlayers.h"

namespace phone {
namespace {

constexpr Micros SECOND = 1'000'000;

/// The phone on the pairing service of a link that never comes up, spoken to directly.
struct PhonePairing : testing::Test {
  PhoneLink link{LinkOptions()};
  Timers timers;
  BluetoothPlayer player{&link, &timers, {}};
  Micros now = 0;

  void answers(MessageStatus status) {
    BluetoothPairingResponse response;
    response.set_status(status);
    response.set_already_paired(false);
    Message message;
    message.bytes = messageBytes(MESSAGE_BLUETOOTH_PAIRING_RESPONSE, response);
    player.onMessage(message);
  }
  /// How often the phone asks within a minute.
  int asksInAMinute() {
    int asked = 0;
    for (int second = 0; second < 60; ++second) {
      timers.advance(now += SECOND);
      const Bytes sent = link.takeOutput();
      FrameDecoder decoder;
      decoder.feed(sent.data(), sent.size());
      for (Frame frame; decoder.next(&frame);) {
        asked += (frame.payload[0] << 8 | frame.payload[1]) == MESSAGE_BLUETOOTH_PAIRING_REQUEST ? 1 : 0;
      }
    }
    return asked;
  }
};

TEST_F(PhonePairing, IsAskedForOnceMoreForEachTimeThatTheHeadUnitWantsItToWait) {
  EXPECT_EQ(asksInAMinute(), 0);
  answers(STATUS_PAIRING_DELAYED);
  EXPECT_EQ(asksInAMinute(), 1);
  answers(STATUS_PAIRING_DELAYED);
  EXPECT_EQ(asksInAMinute(), 1);
  EXPECT_FALSE(player.isPaired());
}

TEST_F(PhonePairing, IsAskedForNoMoreOnceItIsRefused) {
  answers(STATUS_PAIRING_DELAYED);
  answers(STATUS_AUTHENTICATION_FAILURE);
  EXPECT_EQ(asksInAMinute(), 0);
  EXPECT_FALSE(player.isPaired());
}

TEST_F(PhonePairing, IsAskedForNoMoreOnceItIsThere) {
  answers(STATUS_PAIRING_DELAYED);
  answers(STATUS_SUCCESS);
  EXPECT_EQ(asksInAMinute(), 0);
  EXPECT_TRUE(player.isPaired());
}

}  // namespace
}  // namespace phone
