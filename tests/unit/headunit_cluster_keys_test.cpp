#include "headunit/LinkStats.h"
#include "headunit/services/ClusterServices.h"
#include "headunit/services/ServiceIds.h"
#include "headunit_services.h"

namespace headunit {
namespace {

/// Image decoding has no place in these tests.
Image noImage(const std::string&) { return nullptr; }

/// All services on one link, each on the channel of its own number, and the keys beside the strip.
struct HeadunitClusterKeys : testing::Test {
  test::LogCapture log;
  test::PlainLink link;
  Cluster cluster;
  ClusterKeys keys;
  SlowWork slowWork{1};
  PairedPhones paired;
  Equipment equipment;
  LinkStats stats{Clock::now()};
  std::unique_ptr<ClusterServices> services;

  HeadunitClusterKeys() {
    equipment.cluster = &cluster;
    equipment.clusterKeys = &keys;
    equipment.slowWork = &slowWork;
    equipment.decodeImage = noImage;
    equipment.pairedPhones = &paired;
    services = std::make_unique<ClusterServices>(equipment, link.router());
    for (ProtocolEndpointBase* const endpoint : services->endpoints()) link.registers(endpoint);
    services->begin(&stats);
    for (int id = BLUETOOTH; id <= ECHO_EXTENSION; ++id) link.opens(id, id);
    forget();
  }

  void forget() { link.sentFrames(); }
  /// What a key makes the head unit send to the phone, by channel.
  std::vector<std::pair<int, Bytes>> sentAfter(ClusterKey key) {
    forget();
    keys.press(key);
    std::vector<std::pair<int, Bytes>> messages;
    for (const Bytes& wire : link.sentFrames()) {
      const test::WireFrame frame = test::parseFrame(wire);
      messages.emplace_back(frame.channel, frame.payload);
    }
    return messages;
  }
  void calls(PhoneStatus_State state) {
    PhoneStatus status;
    status.add_calls()->set_phone_state(state);
    status.mutable_calls(0)->set_call_duration_seconds(0);
    status.mutable_calls(0)->set_caller_number("1");
    link.sends(PHONE, MESSAGE_PHONE_STATUS, status);
  }
  void notifies() {
    GenericNotificationMessage record;
    record.set_text("Ada: on my way");
    link.sends(NOTIFICATIONS, MESSAGE_GENERIC_NOTIFICATION_MESSAGE, record);
  }
  void asksToPair() {
    BluetoothPairingRequest request;
    request.set_phone_address("02:00:00:5E:77:01");
    request.set_pairing_method(BLUETOOTH_PAIRING_METHOD_2);
    link.sends(BLUETOOTH, MESSAGE_BLUETOOTH_PAIRING_REQUEST, request);
  }
  void openList() {
    MediaRootNode root;
    root.set_path("/");
    for (const char* const path : {"/a", "/b"}) {
      root.add_media_sources()->set_path(path);
      root.mutable_media_sources(root.media_sources_size() - 1)->set_name(path);
    }
    link.sends(BROWSER, MESSAGE_MEDIA_ROOT_NODE, root);
    keys.press(ClusterKey::browser);
  }

  static auto toPlayback(const char* action) {
    return ElementsAre(std::pair(int(PLAYBACK), bytes(std::string("80 02 08 ") + action)));
  }
  static auto toPhone(const char* action) {
    return ElementsAre(std::pair(int(PHONE), bytes(std::string("80 02 0A 02 08 ") + action + " 12 01 31")));
  }
};

TEST_F(HeadunitClusterKeys, GoToThePlayerWhenThereIsNothingElse) {
  EXPECT_THAT(sentAfter(ClusterKey::up), toPlayback("01"));
  EXPECT_THAT(sentAfter(ClusterKey::down), toPlayback("02"));
  EXPECT_THAT(sentAfter(ClusterKey::left), toPlayback("03"));
  EXPECT_THAT(sentAfter(ClusterKey::right), toPlayback("04"));
  EXPECT_THAT(sentAfter(ClusterKey::enter), toPlayback("05"));
  EXPECT_THAT(sentAfter(ClusterKey::back), toPlayback("06"));
  EXPECT_EQ(services->totals().keys, 6U);
}

TEST_F(HeadunitClusterKeys, GoToThePhoneWhileThereIsACall) {
  calls(PhoneStatus_State_IN_CALL);
  EXPECT_THAT(sentAfter(ClusterKey::enter), toPhone("05"));
  EXPECT_THAT(sentAfter(ClusterKey::back), toPhone("06"));
}

TEST_F(HeadunitClusterKeys, TheCallKeyGoesToThePhoneAlways) {
  EXPECT_THAT(sentAfter(ClusterKey::call), ElementsAre(std::pair(int(PHONE), bytes("80 02 0A 02 08 07"))));
  openList();
  asksToPair();
  calls(PhoneStatus_State_IN_CALL);
  EXPECT_THAT(sentAfter(ClusterKey::call), toPhone("07"));
}

TEST_F(HeadunitClusterKeys, MoveInTheListWhileItIsOpenEvenDuringACall) {
  openList();
  calls(PhoneStatus_State_IN_CALL);
  EXPECT_THAT(sentAfter(ClusterKey::down), IsEmpty());
  EXPECT_EQ(cluster.view().browser.selected, 1U);
  EXPECT_THAT(sentAfter(ClusterKey::enter),
              ElementsAre(std::pair(int(BROWSER), bytes("80 05 0A 02 2F 62 10 00 18 01"))));
}

TEST_F(HeadunitClusterKeys, BackClosesTheList) {
  openList();
  EXPECT_TRUE(cluster.view().browser.open);
  EXPECT_THAT(sentAfter(ClusterKey::back), IsEmpty());
  EXPECT_FALSE(cluster.view().browser.open);
}

TEST_F(HeadunitClusterKeys, ACallThatRingsComesBeforeTheListAndANotice) {
  openList();
  notifies();
  calls(PhoneStatus_State_INCOMING);
  EXPECT_THAT(sentAfter(ClusterKey::enter), toPhone("05"));
  EXPECT_THAT(sentAfter(ClusterKey::back), toPhone("06"));
  EXPECT_TRUE(cluster.view().notice);
}

TEST_F(HeadunitClusterKeys, BackHidesANoticeFirst) {
  openList();
  notifies();
  EXPECT_THAT(sentAfter(ClusterKey::back), IsEmpty());
  EXPECT_FALSE(cluster.view().notice);
  EXPECT_TRUE(cluster.view().browser.open);
}

TEST_F(HeadunitClusterKeys, AnswerAPairingBeforeAllElse) {
  calls(PhoneStatus_State_INCOMING);
  asksToPair();
  EXPECT_THAT(sentAfter(ClusterKey::down), IsEmpty());
  EXPECT_TRUE(cluster.view().pairing);
  keys.press(ClusterKey::enter);
  EXPECT_FALSE(cluster.view().pairing);
  EXPECT_EQ(services->totals().pairingsAccepted, 1U);
}

TEST_F(HeadunitClusterKeys, BackRefusesAPairing) {
  asksToPair();
  keys.press(ClusterKey::back);
  EXPECT_FALSE(cluster.view().pairing);
  EXPECT_EQ(services->totals().pairingsRefused, 1U);
}

TEST_F(HeadunitClusterKeys, SwitchTheRadio) {
  keys.press(ClusterKey::radio);
  EXPECT_TRUE(cluster.view().tuner.on);
  keys.press(ClusterKey::radio);
  EXPECT_FALSE(cluster.view().tuner.on);
}

TEST_F(HeadunitClusterKeys, ReachNobodyOnceTheLinkIsOver) {
  services->end();
  EXPECT_THAT(sentAfter(ClusterKey::enter), IsEmpty());
}

TEST_F(HeadunitClusterKeys, WhatIsShownStaysUntilTheNextLinkBegins) {
  calls(PhoneStatus_State_IN_CALL);
  services->end();
  services.reset();
  EXPECT_TRUE(cluster.view().phone.known);
  test::PlainLink next;
  ClusterServices others(equipment, next.router());
  others.begin(&stats);
  EXPECT_FALSE(cluster.view().phone.known);
}

TEST_F(HeadunitClusterKeys, WhatIsShownIsMarkedOnceThePhoneHasGone) {
  calls(PhoneStatus_State_IN_CALL);
  EXPECT_EQ(cluster.link(), &stats);
  services->end();
  EXPECT_EQ(cluster.link(), &stats) << "its last pictures may still come";
  services->gone();
  EXPECT_EQ(cluster.link(), nullptr);
  EXPECT_TRUE(cluster.view().phone.known);
  services->begin(&stats);
  EXPECT_EQ(cluster.link(), &stats);
  services->end();
}

TEST_F(HeadunitClusterKeys, LeavingStopsTheGuidance) {
  forget();
  services->leave();
  EXPECT_THAT(link.sent(NAVIGATION), ElementsAre(bytes("80 02")));
}

TEST_F(HeadunitClusterKeys, EveryServiceIsOpened) {
  const ServiceTotals totals = services->totals();
  for (const std::uint64_t opened :
       {totals.pairingOpened, totals.radioOpened, totals.navigationOpened, totals.playbackOpened,
        totals.phoneOpened, totals.browserOpened, totals.notificationOpened, totals.echoOpened}) {
    EXPECT_EQ(opened, 1U);
  }
}

TEST_F(HeadunitClusterKeys, TheEchoComesBack) {
  link.sends(ECHO_EXTENSION, bytes("12 34 56"));
  EXPECT_THAT(link.sent(ECHO_EXTENSION), ElementsAre(bytes("12 34 56")));
  EXPECT_EQ(services->totals().echoes, 1U);
}

TEST_F(HeadunitClusterKeys, TheEchoIsNoLongerThanItMayBe) {
  const std::string longest(EchoService::LONGEST_ECHO, 'x');
  link.sends(ECHO_EXTENSION, test::text(longest));
  EXPECT_THAT(link.sent(ECHO_EXTENSION), ElementsAre(test::text(longest)));
  link.sends(ECHO_EXTENSION, test::text(longest + "x"));
  EXPECT_THAT(link.sent(ECHO_EXTENSION), ElementsAre(bytes("00 FF")));
}

TEST_F(HeadunitClusterKeys, TheEchoHasAName) {
  ServiceDiscoveryResponse response;
  services->endpoints().back()->addDiscoveryInfo(&response);
  EXPECT_EQ(response.services(0).id(), ECHO_EXTENSION);
  EXPECT_EQ(response.services(0).vendor_extension_service().service_name(), "com.example.headunit.echo");
}

}  // namespace
}  // namespace headunit
