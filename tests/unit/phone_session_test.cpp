#include "phone/PhoneSession.h"

#include <gmock/gmock.h>

#include "phone_head_unit.h"

namespace test {
namespace {

using phone::LinkState;
using phone::PhoneSession;
using phone::PictureSize;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

struct ThreePictures : phone::VideoSource {
  int given = 0;
  std::vector<std::uint8_t> codecConfig() override { return bytes("00 00 00 01 67"); }
  bool next(phone::AccessUnit* unit) override {
    if (given == 3) return false;
    unit->data = bytes("00 00 00 01 65");
    unit->timestampUs = unit->dueUs = 33'000 * given++;
    return true;
  }
  int width() const override { return 800; }
  int height() const override { return 480; }
};

ServiceDiscoveryResponse carWithScreen() {
  ServiceDiscoveryResponse services;
  Service* screen = services.add_services();
  screen->set_id(6);
  for (const auto resolution : {VIDEO_800x480, VIDEO_1280x720}) {
    screen->mutable_media_sink_service()->add_video_configs()->set_codec_resolution(resolution);
  }
  return services;
}

// As the program's.
phone::LinkOptions interleaving() {
  phone::LinkOptions options = linkOptions();
  options.interleaves = true;
  return options;
}

struct PhoneSessionTest : testing::Test {
  phone::PhoneLink link{interleaving()};
  HandMadeHeadUnit headUnit{&link};
  phone::Timers timers;
  phone::SessionOptions options;
  PictureSize made{0, 0};
  std::string factoryError;
  std::unique_ptr<PhoneSession> session_;

  PhoneSession& session() {
    if (session_) return *session_;
    options.stream.paced = false;
    auto make = [this](PictureSize size, std::string* error) -> std::unique_ptr<phone::VideoSource> {
      made = size;
      *error = factoryError;
      return factoryError.empty() ? std::make_unique<ThreePictures>() : nullptr;
    };
    session_ = std::make_unique<PhoneSession>(&link, &timers, options, make);
    return *session_;
  }
  void bringUp(const ServiceDiscoveryResponse& services = carWithScreen()) {
    session().start();
    headUnit.asksVersion();
    headUnit.shakesHands();
    timers.advance(250);
    headUnit.agrees();
    headUnit.hears();
    headUnit.sends(0, MESSAGE_SERVICE_DISCOVERY_RESPONSE, services);
  }
  void configure(const std::vector<std::uint32_t>& indices) {
    Config config;
    config.set_status(Config_Status_STATUS_READY);
    config.set_max_unacked(4);
    for (const std::uint32_t index : indices) config.add_configuration_indices(index);
    headUnit.sends(1, MESSAGE_CONFIG, config);
  }
  void play() {
    bringUp();
    headUnit.answersOpen(1);
    configure({0, 1});
    headUnit.hears();
  }
  void expectFailure(const std::string& words) {
    ASSERT_TRUE(link.end());
    EXPECT_FALSE(session().outcome().clean);
    EXPECT_THAT(session().outcome().words(), HasSubstr(words));
  }
};

TEST_F(PhoneSessionTest, OpensTheVideoSinkThatDiscoveryLists) {
  bringUp();
  const auto heard = headUnit.hears();
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].channel, 1);
  EXPECT_EQ(heard[0].payload, bytes("00 07 08 00 10 06"));
}

TEST_F(PhoneSessionTest, PlaysInTheWantedSizeAndSaysGoodBye) {
  options.wish.size = {1280, 720};
  play();
  EXPECT_TRUE(made == (PictureSize{1280, 720}));
  headUnit.sends(1, bytes("80 04 08 01 10 03"));  // Ack, session 1, three
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 02"), bytes("00 0F 08 01")));
  headUnit.sends(0, bytes("00 10"));
  ASSERT_TRUE(link.end());
  EXPECT_TRUE(session().outcome().clean);
  EXPECT_EQ(timers.next(), std::nullopt);
}

TEST_F(PhoneSessionTest, TellsTheTimeOfThePictureThatWasSentLast) {
  EXPECT_EQ(session().pictureTime(), 0);
  play();
  EXPECT_EQ(session().pictureTime(), 66'000);
}

TEST_F(PhoneSessionTest, PlaysInTheFirstAllowedSizeWhereTheWantedOneIsNot) {
  options.wish.size = {1920, 1080};
  bringUp();
  headUnit.answersOpen(1);
  headUnit.hears();
  configure({1, 0});
  EXPECT_EQ(headUnit.hearsMessages().at(0), bytes("80 01 08 01 10 01"));
  EXPECT_TRUE(made == (PictureSize{1280, 720}));
}

TEST_F(PhoneSessionTest, CountsTheRulesThatAreBroken) {
  play();
  EXPECT_EQ(session().violations(), 0U);
  for (int i = 0; i < 3; ++i) headUnit.sends(0, bytes("00"));
  EXPECT_EQ(session().violations(), 3U);
  EXPECT_FALSE(link.end());
}

TEST_F(PhoneSessionTest, MeasuresTheHandshake) {
  EXPECT_EQ(session().handshakeTime(), std::nullopt);
  bringUp();
  EXPECT_EQ(session().handshakeTime(), 250);
}

TEST_F(PhoneSessionTest, GivesUpOnAHeadUnitThatNeverSpeaks) {
  session().start();
  timers.advance(options.bringUpLimit - 1);
  EXPECT_FALSE(link.end());
  timers.advance(options.bringUpLimit);
  expectFailure("head unit: took too long, with the link waiting for the version request");
}

TEST_F(PhoneSessionTest, GivesUpOnAHandshakeThatStalls) {
  session().start();
  headUnit.asksVersion();
  timers.advance(options.bringUpLimit);
  expectFailure("in the TLS handshake");
}

TEST_F(PhoneSessionTest, LeavesAHeadUnitWithoutAScreen) {
  bringUp(ServiceDiscoveryResponse());
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("00 0F 08 01")));
  headUnit.sends(0, bytes("00 10"));
  expectFailure("head unit: offers no service that takes a picture");
}

TEST_F(PhoneSessionTest, LeavesWhenNoOfferedConfigurationIsAllowed) {
  bringUp();
  headUnit.answersOpen(1);
  configure({7});
  timers.advance(timers.now() + options.farewellLimit);
  expectFailure("allows none of the video configurations");
}

TEST_F(PhoneSessionTest, LeavesWhenThePictureCannotBeMade) {
  factoryError = "The file is no video.";
  bringUp();
  headUnit.answersOpen(1);
  configure({0});
  headUnit.sends(0, bytes("00 10"));
  expectFailure("phone: The file is no video.");
}

TEST_F(PhoneSessionTest, AnUnansweredGoodByeIsStillAnEnd) {
  play();
  headUnit.sends(1, bytes("80 04 08 01 10 03"));
  EXPECT_EQ(link.state(), LinkState::leaving);
  timers.advance(timers.now() + options.farewellLimit);
  ASSERT_TRUE(link.end());
  EXPECT_TRUE(session().outcome().clean);
  EXPECT_THAT(session().outcome().words(), HasSubstr("did not answer"));
}

TEST_F(PhoneSessionTest, AHeadUnitThatSaysGoodByeEndsIt) {
  play();
  headUnit.sends(0, bytes("00 0F 08 01"));
  ASSERT_TRUE(link.end());
  EXPECT_TRUE(session().outcome().clean);
}

TEST_F(PhoneSessionTest, AHeadUnitThatGoesAwayIsAFailure) {
  play();
  link.streamEnded("Connection reset by peer");
  expectFailure("Connection reset by peer");
  EXPECT_EQ(timers.next(), std::nullopt);
}

TEST_F(PhoneSessionTest, PingsASilentHeadUnitAndGivesUpOnADeadOne) {
  options.stream.answerLimit = 60'000'000;
  bringUp();
  headUnit.hears();
  const phone::Micros begin = timers.now();
  timers.advance(begin + 1'000'000);
  EXPECT_THAT(headUnit.hearsMessages(), SizeIs(1));
  headUnit.sends(0, bytes("00 0C 08 01"));  // PingResponse
  timers.advance(begin + 4'500'000);
  EXPECT_FALSE(link.end()) << "it was heard of at 1 s";
  timers.advance(begin + 6'000'000);
  expectFailure("no longer answers");
}

TEST_F(PhoneSessionTest, AnInterruptStopsTheStreamAndSaysGoodBye) {
  play();
  session().interrupt();
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 02"), bytes("00 0F 08 01")));
  headUnit.sends(0, bytes("00 10"));
  EXPECT_TRUE(session().outcome().clean);
}

TEST_F(PhoneSessionTest, ASecondInterruptDoesNotWait) {
  play();
  session().interrupt();
  session().interrupt();
  ASSERT_TRUE(link.end());
  EXPECT_TRUE(session().outcome().clean);
}

TEST_F(PhoneSessionTest, AnInterruptBeforeTheLinkIsUpEndsItAtOnce) {
  session().start();
  headUnit.asksVersion();
  headUnit.hears();
  session().interrupt();
  ASSERT_TRUE(link.end());
  EXPECT_TRUE(session().outcome().clean);
  EXPECT_THAT(headUnit.hearsMessages(), IsEmpty());
}

}  // namespace
}  // namespace test
