#include "EndpointTest.h"
#include "RecordingEndpoint.h"
#include "SecureLink.h"

// What the phone learns of the car.

namespace test {
namespace {

struct DiscoveryTest : testing::Test {
  LogCapture log;
  SecureLink link;
  MockControllerCallbacks& host = link.host();
  Controller& controller = link.controller();

  DiscoveryTest() {
    link.acceptsVersion();
    link.sentFrames();
    log.clear();
  }
  std::vector<Bytes> answerTo(const char* request) {
    link.sends(0, bytes(request));
    return link.sent(0);
  }
};

TEST_F(DiscoveryTest, TellsTheHostWhatThePhoneIsBeforeItAnswers) {
  EXPECT_CALL(host, serviceDiscoveryRequest("\x01\x02", "\x03", "\x04\x05", "My phone")).WillOnce([&] {
    EXPECT_THAT(link.sent(0), IsEmpty());
  });
  EXPECT_EQ(answerTo("00 05"
                     "0A 02 01 02"                     // small_icon
                     "12 01 03"                        // medium_icon
                     "1A 02 04 05"                     // large_icon
                     "22 08 4D 79 20 70 68 6F 6E 65")  // label_text
                .size(),
            1U);
}

TEST_F(DiscoveryTest, AnEmptyRequestHasEmptyFields) {
  EXPECT_CALL(host, serviceDiscoveryRequest("", "", "", ""));
  EXPECT_EQ(answerTo("00 05").size(), 1U);
}

TEST_F(DiscoveryTest, IdentityThatWasNotGivenIsSentEmpty) {
  EXPECT_THAT(answerTo("00 05"), ElementsAre(bytes("00 06"     // MESSAGE_SERVICE_DISCOVERY_RESPONSE
                                                   "12 00"     // make
                                                   "1A 00"     // model
                                                   "22 00"     // year
                                                   "2A 00"     // vehicle_id
                                                   "30 00"     // driver_position
                                                   "3A 00"     // head_unit_make
                                                   "42 00"     // head_unit_model
                                                   "4A 00"     // head_unit_software_build
                                                   "52 00")))  // head_unit_software_version
      << "and nothing of native media";
}

TEST_F(DiscoveryTest, TheAnswerIsFlaggedForEncryption) {
  link.sends(0, bytes("00 05"));
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00"     // channel 0
                                                   "0B"     // FRAME_ATOMIC, encrypted, no control frame
                                                   "00 14"  // length
                                                   "00 06"
                                                   "12 00 1A 00 22 00 2A 00 30 00"
                                                   "3A 00 42 00 4A 00 52 00")));
}

TEST_F(DiscoveryTest, TellsTheIdentityAndTheServices) {
  RecordingEndpoint late(9, link.router());
  RecordingEndpoint early(2, link.router());
  link.registers(&late);
  link.registers(&early);
  controller.setMake("A");
  controller.setModel("B");
  controller.setYear("C");
  controller.setVehicleId("D");
  controller.setDriverPosition(DRIVER_POSITION_2);
  controller.setHeadUnitMake("E");
  controller.setHeadUnitModel("F");
  controller.setHeadUnitSoftwareBuild("G");
  controller.setHeadUnitSoftwareVersion("H");
  EXPECT_THAT(answerTo("00 05"), ElementsAre(bytes("00 06"
                                                   "0A 02 08 02"   // service 2
                                                   "0A 02 08 09"   // service 9
                                                   "12 01 41"      // make
                                                   "1A 01 42"      // model
                                                   "22 01 43"      // year
                                                   "2A 01 44"      // vehicle_id
                                                   "30 02"         // driver_position
                                                   "3A 01 45"      // head_unit_make
                                                   "42 01 46"      // head_unit_model
                                                   "4A 01 47"      // head_unit_software_build
                                                   "52 01 48")));  // head_unit_software_version
}

TEST_F(DiscoveryTest, IsServedAsOftenAsItIsAskedFor) {
  EXPECT_CALL(host, serviceDiscoveryRequest).Times(2);
  EXPECT_EQ(answerTo("00 05"), answerTo("00 05"));
}

/// The lines logged for an answer of this size, type bytes included.
std::vector<std::string> loggedForSize(std::size_t size) {
  LogCapture log;
  SecureLink link;
  link.acceptsVersion();
  link.controller().setMake(std::string(size - 21, 'm'));  // 20 bytes without it, and one for a longer length
  link.sentFrames();
  log.clear();
  link.sends(0, bytes("00 05"));
  EXPECT_EQ(link.sent(0).at(0).size(), size);
  return log.all();
}

TEST(DiscoverySizeTest, ExactlyOneSizeIsLogged) {
  EXPECT_THAT(loggedForSize(478), IsEmpty());
  EXPECT_THAT(loggedForSize(479),
              ElementsAre("critical [LHU] MESSAGE_SERVICE_DISCOVERY_RESPONSE buf.size() is 479 bytes"));
  EXPECT_THAT(loggedForSize(480), IsEmpty());
}

TEST_F(DiscoveryTest, AnInvalidDriverPositionStopsTheProcess) {
  controller.setDriverPosition(static_cast<DriverPosition>(3));
  EXPECT_DEATH(answerTo("00 05"), "::DriverPosition_IsValid\\(value\\)");
}

}  // namespace
}  // namespace test
