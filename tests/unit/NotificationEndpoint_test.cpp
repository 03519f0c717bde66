#include "NotificationEndpoint.h"

#include <thread>

#include "ServiceTest.h"

namespace test {
namespace {

using testing::IsNull;
using testing::NotNull;

struct MockNotificationCallbacks : INotificationCallbacks {
  MOCK_METHOD(void, subscriptionChanged, (bool), (override));
  MOCK_METHOD(void, notification,
              (const std::string&, bool, const std::string&, bool, unsigned char*, unsigned int), (override));
  MOCK_METHOD(void, notificationAck, (const std::string&), (override));
};

const Bytes SUBSCRIBE = bytes("80 01");    // MESSAGE_GENERIC_NOTIFICATION_SUBSCRIBE
const Bytes UNSUBSCRIBE = bytes("80 02");  // MESSAGE_GENERIC_NOTIFICATION_UNSUBSCRIBE

struct NotificationEndpointTest : ServiceTest {
  shared_ptr<INotificationCallbacks> held;
  MockNotificationCallbacks& host = strict<MockNotificationCallbacks>(&held);
  NotificationEndpoint notifications{SERVICE, link.router(), held};
  NotificationEndpointTest() { open(&notifications); }

  void subscribe() {
    EXPECT_CALL(host, subscriptionChanged(true));
    sends(SUBSCRIBE);
  }

  int sendText(const std::string& content) {
    return notifications.sendNotification(content, false, "", false, nullptr, 0);
  }
};

TEST_F(NotificationEndpointTest, TellsTheHostOfEverySubscriptionMessage) {
  InSequence order;
  EXPECT_CALL(host, subscriptionChanged(false));
  EXPECT_CALL(host, subscriptionChanged(true)).Times(2);
  EXPECT_CALL(host, subscriptionChanged(false)).Times(2);
  for (const Bytes& arriving : {UNSUBSCRIBE, SUBSCRIBE, SUBSCRIBE, UNSUBSCRIBE, UNSUBSCRIBE}) {
    EXPECT_EQ(routed(arriving), STATUS_SUCCESS);
  }
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(NotificationEndpointTest, TheBodyOfASubscriptionIsNotRead) {
  InSequence order;
  EXPECT_CALL(host, subscriptionChanged(true));
  EXPECT_CALL(host, subscriptionChanged(false));
  sends(SUBSCRIBE + bytes("FF FF FF"));  // no record at all
  sends(UNSUBSCRIBE + bytes("0A 7F"));
  EXPECT_THAT(log.all(), IsEmpty());
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(NotificationEndpointTest, SendsNothingBeforeThePhoneHasSubscribed) {
  EXPECT_EQ(sendText("Hi"), STATUS_INVALID_CHANNEL);
  EXPECT_EQ(notifications.ackNotification("7"), STATUS_INVALID_CHANNEL);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(NotificationEndpointTest, SendsNothingAfterThePhoneHasUnsubscribed) {
  subscribe();
  EXPECT_CALL(host, subscriptionChanged(false));
  sends(UNSUBSCRIBE);
  EXPECT_EQ(sendText("Hi"), STATUS_INVALID_CHANNEL);
  EXPECT_EQ(notifications.ackNotification("7"), STATUS_INVALID_CHANNEL);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(NotificationEndpointTest, SendsATextAloneAndDoesNotReadWhatIsNotThere) {
  subscribe();
  auto* const nowhere = reinterpret_cast<unsigned char*>(1);
  EXPECT_EQ(notifications.sendNotification("Hi", false, "ignored", false, nowhere, UINT32_MAX),
            STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 03"  // MESSAGE_GENERIC_NOTIFICATION_MESSAGE
                                        "12 02") +
                                  text("Hi")));  // text
}

TEST_F(NotificationEndpointTest, SendsTextIdAndIcon) {
  subscribe();
  Bytes icon = bytes("00 FF 00");
  EXPECT_EQ(notifications.sendNotification("", true, "7", true, icon.data(), 3), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 03"
                                        "0A 01 37"            // id "7"
                                        "12 00"               // text: empty, and said so
                                        "1A 03 00 FF 00")));  // icon
}

TEST_F(NotificationEndpointTest, SendsAnEmptyIdAndAnEmptyIconWhereTheyAreGiven) {
  subscribe();
  EXPECT_EQ(notifications.sendNotification("Hi", true, "", true, nullptr, 0), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 03 0A 00"
                                        "12 02") +
                                  text("Hi") + bytes("1A 00")));
}

TEST_F(NotificationEndpointTest, AcknowledgesByIdAlone) {
  subscribe();
  EXPECT_EQ(notifications.ackNotification("7"), STATUS_SUCCESS);
  EXPECT_EQ(notifications.ackNotification(""), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 04"       // MESSAGE_GENERIC_NOTIFICATION_ACK
                                        "0A 01 37"),  // id "7"; and no handled
                                  bytes("80 04 0A 00")));
}

TEST_F(NotificationEndpointTest, AClosedChannelKeepsTheSubscriptionAndDropsWhatIsSent) {
  subscribe();
  close();
  EXPECT_EQ(sendText("Hi"), STATUS_SUCCESS);
  EXPECT_EQ(notifications.ackNotification("7"), STATUS_SUCCESS);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  link.opens(CHANNEL, SERVICE);
  EXPECT_EQ(sendText("Hi"), STATUS_SUCCESS);
  EXPECT_EQ(sent().size(), 1U);
}

TEST_F(NotificationEndpointTest, HandsANotificationOver) {
  EXPECT_CALL(host, notification("Hi", true, "7", false, IsNull(), 0));
  EXPECT_EQ(routed(bytes("80 03 0A 01 37 12 02") + text("Hi")), STATUS_SUCCESS);
}

TEST_F(NotificationEndpointTest, HandsANotificationWithoutFieldsOver) {
  EXPECT_CALL(host, notification("", false, "", false, IsNull(), 0));
  sends(bytes("80 03"));
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(NotificationEndpointTest, TellsAnEmptyIdFromNone) {
  EXPECT_CALL(host, notification("", true, "", false, IsNull(), 0));
  sends(bytes("80 03 0A 00"));
}

TEST_F(NotificationEndpointTest, HandsAnIconOverWithoutItsSize) {
  const Bytes icon = pattern(100);
  EXPECT_CALL(host, notification("", false, "", true, NotNull(), 0))
      .WillOnce([&](auto&, bool, auto&, bool, unsigned char* bytesOfIcon, unsigned int) {
        EXPECT_EQ(Bytes(bytesOfIcon, 100), icon);
      });
  sends(bytes("80 03 1A 64") + icon);
}

TEST_F(NotificationEndpointTest, AnEmptyIconIsAnIcon) {
  EXPECT_CALL(host, notification("", false, "", true, NotNull(), 0));
  sends(bytes("80 03 1A 00"));
}

TEST_F(NotificationEndpointTest, HandsAcknowledgementsOverByIdAlone) {
  InSequence order;
  EXPECT_CALL(host, notificationAck("7"));
  EXPECT_CALL(host, notificationAck(""));
  EXPECT_EQ(routed(bytes("80 04 0A 01 37"  // id "7"
                         "10 01")),        // handled, of which nobody hears
            STATUS_SUCCESS);
  sends(bytes("80 04"));
}

TEST_F(NotificationEndpointTest, HandsOverWhatArrivesAfterAnUnsubscribe) {
  EXPECT_CALL(host, subscriptionChanged(false));
  EXPECT_CALL(host, notification("Hi", false, "", false, IsNull(), 0));
  EXPECT_CALL(host, notificationAck("7"));
  sends(UNSUBSCRIBE);
  sends(bytes("80 03 12 02") + text("Hi"));
  sends(bytes("80 04 0A 01 37"));
  EXPECT_EQ(notifications.ackNotification("7"), STATUS_INVALID_CHANNEL);
}

TEST_F(NotificationEndpointTest, AHostThreadMaySendWhileThePhoneSubscribesAndUnsubscribes) {
  EXPECT_CALL(host, subscriptionChanged).Times(400);
  std::size_t accepted = 0;
  std::thread sender([&] {
    for (int i = 0; i < 400; ++i) {
      if (sendText("Hi") == STATUS_SUCCESS) ++accepted;
    }
  });
  for (int i = 0; i < 200; ++i) {
    sends(SUBSCRIBE);
    sends(UNSUBSCRIBE);
  }
  sender.join();
  EXPECT_EQ(sent().size(), accepted);
}

TEST_F(NotificationEndpointTest, AdvertisesItselfAndNothingElse) {
  EXPECT_EQ(advertised(), bytes("0A 04"     // services
                                "08 07"     // id
                                "6A 00"));  // generic_notification_service
}

TEST_F(NotificationEndpointTest, RefusesWhatDoesNotParse) {
  expectUnparsable(bytes("80 03 12 02 41"), "NotificationEndpoint");  // cut off
  expectUnparsable(bytes("80 04 FF"), "NotificationEndpoint");
}

TEST_F(NotificationEndpointTest, RefusesEveryOtherType) {
  expectUnknownTypes({0x8000, 0x8005, 0, 1, 255, 0xFFFF});
}

}  // namespace
}  // namespace test
