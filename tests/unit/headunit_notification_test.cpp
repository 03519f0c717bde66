#include "headunit/services/GreetingIcon.h"
#include "headunit/services/NotificationService.h"
#include "headunit_services.h"

namespace headunit {
namespace {

struct HeadunitNotification : ServicesTest {
  NoticeEndpoint notifications{SERVICE, context};
  HeadunitNotification() { open(&notifications); }

  void notifies(const std::string& text, const std::string& id = "") {
    GenericNotificationMessage record;
    record.set_text(text);
    if (!id.empty()) record.set_id(id);
    sends(MESSAGE_GENERIC_NOTIFICATION_MESSAGE, record);
  }
  void subscribes() { link.sends(CHANNEL, MESSAGE_GENERIC_NOTIFICATION_SUBSCRIBE, Bytes()); }
};

TEST_F(HeadunitNotification, IsShownForFiveSeconds) {
  notifies("Rain from six o'clock");
  ASSERT_TRUE(view().notice);
  EXPECT_EQ(view().notice->text, "Rain from six o'clock");
  EXPECT_EQ(view().notice->until, now + std::chrono::seconds(5));
  EXPECT_EQ(tally.totals().notificationsShown, 1U);
}

TEST_F(HeadunitNotification, TheNewestIsShown) {
  notifies("Rain from six o'clock");
  notifies("Ada: on my way", "note-2");
  EXPECT_EQ(view().notice->text, "Ada: on my way");
}

TEST_F(HeadunitNotification, IsAcknowledgedToAPhoneThatHasSubscribed) {
  subscribes();
  sent();
  notifies("Ada: on my way", "note-2");
  EXPECT_THAT(sent(), ElementsAre(bytes("80 04"     // MESSAGE_GENERIC_NOTIFICATION_ACK
                                        "0A 06") +  // id
                                  test::text("note-2")));
}

TEST_F(HeadunitNotification, IsNotAcknowledgedWithoutAnIdNorToAPhoneThatHasNotSubscribed) {
  notifies("Ada: on my way", "note-2");
  subscribes();
  sent();
  notifies("Rain from six o'clock");
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(HeadunitNotification, IsShownWithoutItsIconWhoseLengthIsNotTold) {
  GenericNotificationMessage record;
  record.set_text("Ada");
  record.set_icon("image 1");
  sends(MESSAGE_GENERIC_NOTIFICATION_MESSAGE, record);
  EXPECT_EQ(view().notice->text, "Ada");
  EXPECT_THAT(posted, IsEmpty());
}

TEST_F(HeadunitNotification, IsDismissedByTheUser) {
  EXPECT_FALSE(notifications.host().dismiss());
  notifies("Ada");
  EXPECT_TRUE(notifications.host().dismiss());
  EXPECT_FALSE(view().notice);
  EXPECT_FALSE(notifications.host().dismiss());
  EXPECT_EQ(tally.totals().notificationsDismissed, 1U);
}

TEST_F(HeadunitNotification, CannotBeDismissedOnceItIsOver) {
  notifies("Ada");
  now += std::chrono::seconds(5);
  EXPECT_FALSE(notifications.host().dismiss());
}

TEST_F(HeadunitNotification, GreetsAPhoneThatSubscribesOnce) {
  subscribes();
  GenericNotificationMessage greeting;
  greeting.set_id("greeting");
  greeting.set_text("Connected to your car");
  greeting.set_icon(GREETING_ICON, sizeof GREETING_ICON);
  EXPECT_THAT(sent(), ElementsAre(message(MESSAGE_GENERIC_NOTIFICATION_MESSAGE, greeting)));
  subscribes();
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_EQ(tally.totals().notificationsSent, 1U);
}

TEST_F(HeadunitNotification, NotesThatTheGreetingWasAcknowledged) {
  subscribes();
  GenericNotificationAck ack;
  ack.set_id("something else");
  sends(MESSAGE_GENERIC_NOTIFICATION_ACK, ack);
  EXPECT_EQ(tally.totals().notificationsAcknowledged, 0U);
  ack.set_id("greeting");
  sends(MESSAGE_GENERIC_NOTIFICATION_ACK, ack);
  EXPECT_EQ(tally.totals().notificationsAcknowledged, 1U);
}

}  // namespace
}  // namespace headunit
