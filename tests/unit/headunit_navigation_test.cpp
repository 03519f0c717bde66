#include "headunit/services/NavigationService.h"

#include "headunit_services.h"

namespace headunit {
namespace {

struct HeadunitNavigation : ServicesTest {
  NavigationEndpoint navigation{SERVICE, context};

  void turns(const std::string& road, const std::string& image = "") {
    NavigationNextTurnEvent turn;
    turn.set_road(road);
    turn.set_turn_side(NavigationNextTurnEvent_TurnSide_RIGHT);
    turn.set_event(NavigationNextTurnEvent_NextTurnEnum_ROUNDABOUT_ENTER_AND_EXIT);
    turn.set_turn_number(2);
    turn.set_turn_angle(60);
    if (!image.empty()) turn.set_image(image);
    sends(MESSAGE_NAVIGATION_NEXT_TURN_EVENT, turn);
  }
  void tells(NavigationStatus_NavigationStatusEnum status) {
    NavigationStatus record;
    record.set_status(status);
    sends(MESSAGE_NAVIGATION_STATUS, record);
  }
};

TEST_F(HeadunitNavigation, AsksForGuidanceAsSoonAsThePhoneOpensTheService) {
  open(&navigation);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 01")));  // MESSAGE_NAVIGATION_STATUS_START
  EXPECT_EQ(tally.totals().navigationOpened, 1U);
}

TEST_F(HeadunitNavigation, AsksForAnEndOfGuidance) {
  open(&navigation);
  sent();
  navigation.host().stop();
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02")));  // MESSAGE_NAVIGATION_STATUS_STOP
}

TEST_F(HeadunitNavigation, OffersAClusterThatDrawsImages) {
  ServiceDiscoveryResponse response;
  navigation.addDiscoveryInfo(&response);
  ASSERT_EQ(response.services_size(), 1);
  const NavigationStatusService& offered = response.services(0).navigation_status_service();
  EXPECT_EQ(offered.type(), NavigationStatusService_InstrumentClusterType_IMAGE);
  EXPECT_EQ(offered.minimum_interval_ms(), 500);
  EXPECT_EQ(offered.image_options().width(), 128);
  EXPECT_EQ(offered.image_options().height(), 128);
  EXPECT_EQ(offered.image_options().colour_depth_bits(), 32);
}

TEST_F(HeadunitNavigation, ShowsTheNextTurn) {
  open(&navigation);
  turns("Ring Road");
  const TurnView turn = view().turn;
  EXPECT_TRUE(turn.guiding);
  EXPECT_EQ(turn.road, "Ring Road");
  EXPECT_EQ(turn.side, NavigationNextTurnEvent_TurnSide_RIGHT);
  EXPECT_EQ(turn.event, NavigationNextTurnEvent_NextTurnEnum_ROUNDABOUT_ENTER_AND_EXIT);
  EXPECT_EQ(turn.angle, 60);
  EXPECT_EQ(turn.number, 2);
  EXPECT_EQ(turn.meters, -1) << "not told yet";
  EXPECT_EQ(turn.image, nullptr);
  EXPECT_THAT(posted, IsEmpty());
}

TEST_F(HeadunitNavigation, ShowsTheDistance) {
  open(&navigation);
  turns("Ring Road");
  NavigationNextTurnDistanceEvent distance;
  distance.set_distance_meters(250);
  distance.set_time_to_turn_seconds(18);
  sends(MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT, distance);
  EXPECT_EQ(view().turn.meters, 250);
  EXPECT_EQ(view().turn.seconds, 18);
  EXPECT_EQ(view().turn.road, "Ring Road");
  EXPECT_EQ(tally.totals().turns, 1U);
  EXPECT_EQ(tally.totals().distances, 1U);
}

TEST_F(HeadunitNavigation, ShowsTheImageOnceItHasBeenDecodedElsewhere) {
  open(&navigation);
  turns("Ring Road", "image 1");
  EXPECT_EQ(view().turn.image, nullptr);
  decodeAll();
  EXPECT_EQ(lengthOf(view().turn.image), 7U);
}

TEST_F(HeadunitNavigation, ALateImageDoesNotComeIntoANewerTurn) {
  open(&navigation);
  turns("Ring Road", "image 1");
  turns("Mill Lane", "image number 2");
  ASSERT_THAT(posted, SizeIs(2));
  posted[1]();
  posted[0]();
  EXPECT_EQ(view().turn.road, "Mill Lane");
  EXPECT_EQ(lengthOf(view().turn.image), 14U);
}

TEST_F(HeadunitNavigation, ALateImageDoesNotComeBackAfterTheEndOfGuidance) {
  open(&navigation);
  turns("Ring Road", "image 1");
  tells(NavigationStatus_NavigationStatusEnum_INACTIVE);
  decodeAll();
  EXPECT_FALSE(view().turn.guiding);
  EXPECT_EQ(view().turn.road, "");
  EXPECT_EQ(view().turn.image, nullptr);
}

TEST_F(HeadunitNavigation, BeginsWithTheStatusAndForgetsTheTurnWhenTheChannelCloses) {
  open(&navigation);
  tells(NavigationStatus_NavigationStatusEnum_ACTIVE);
  EXPECT_TRUE(view().turn.guiding);
  turns("Ring Road");
  link.closes(CHANNEL);
  EXPECT_FALSE(view().turn.guiding);
  EXPECT_EQ(view().turn.road, "");
}

}  // namespace
}  // namespace headunit
