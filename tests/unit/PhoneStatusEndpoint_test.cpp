#include "PhoneStatusEndpoint.h"

#include "ServiceTest.h"

namespace test {
namespace {

/// Keeps what it is given for as long as it lives, which it may: under AddressSanitizer an array that the
/// library frees as well, or that nobody frees, fails the test.
struct RecordingHost : IPhoneStatusCallbacks {
  ~RecordingHost() override {
    for (const PhoneStatusStruct& status : statuses) delete[] status.calls;
  }
  void phoneStatus(const PhoneStatusStruct& status) override { statuses.push_back(status); }

  std::vector<PhoneStatusStruct> statuses;
};

struct PhoneStatusEndpointTest : ServiceTest {
  RecordingHost* const host = new RecordingHost();  // owned by the pointer below
  shared_ptr<IPhoneStatusCallbacks> held{host};
  PhoneStatusEndpoint phone{SERVICE, link.router(), held};
  PhoneStatusEndpointTest() { open(&phone); }
};

const Bytes TWO_CALLS = bytes(
                            "80 01"     // MESSAGE_PHONE_STATUS
                            "0A 16"     // calls
                            "08 01"     // phone_state: in call
                            "10 AC 02"  // call_duration_seconds 300
                            "1A 03") +
                        text("110") +                  // caller_number
                        bytes("22 02") + text("Al") +  // caller_id
                        bytes("2A 01") + text("m") +   // caller_number_type
                        bytes(
                            "32 03 00 41 00"  // caller_thumbnail, zero bytes included
                            "0A 08"           // calls
                            "08 04"           // phone_state: incoming
                            "10 00"           // call_duration_seconds 0
                            "22 02") +
                        text("Bo") +     // caller_id
                        bytes("10 04");  // signal_strength 4

TEST_F(PhoneStatusEndpointTest, HandsOverAllCalls) {
  sends(TWO_CALLS);
  ASSERT_EQ(host->statuses.size(), 1U);
  ASSERT_EQ(host->statuses[0].callCount, 2);
  EXPECT_EQ(host->statuses[0].signalStrength, 4U);
  const auto& [state, number, id, numberType, seconds, thumbnail] = host->statuses[0].calls[0];
  EXPECT_EQ(state, PhoneStatus_State_IN_CALL);
  EXPECT_EQ(number, "110");
  EXPECT_EQ(id, "Al");
  EXPECT_EQ(numberType, "m");
  EXPECT_EQ(seconds, 300U);
  EXPECT_EQ(thumbnail, std::string("\0A\0", 3));
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(PhoneStatusEndpointTest, ACallerWithoutANumberHasAnEmptyOne) {
  sends(TWO_CALLS);
  ASSERT_EQ(host->statuses.size(), 1U);
  const PhoneCallStruct& call = host->statuses[0].calls[1];
  EXPECT_EQ(call.phoneState, PhoneStatus_State_INCOMING);
  EXPECT_EQ(call.callerNumber, "");
  EXPECT_EQ(call.callerId, "Bo");
  EXPECT_EQ(call.callerNumberType + call.callerThumbnail, "");
  EXPECT_EQ(call.callDurationSeconds, 0U);
}

TEST_F(PhoneStatusEndpointTest, NoCallsAreAnArrayOfNoneThatTheHostOwns) {
  EXPECT_EQ(routed(bytes("80 01 10 03")), STATUS_SUCCESS);
  ASSERT_EQ(host->statuses.size(), 1U);
  EXPECT_EQ(host->statuses[0].callCount, 0);
  EXPECT_NE(host->statuses[0].calls, nullptr);
}

TEST_F(PhoneStatusEndpointTest, SignalThatThePhoneDoesNotTellReadsAsZero) {
  sends(bytes("80 01"));
  sends(TWO_CALLS);
  sends(bytes("80 01"));
  ASSERT_EQ(host->statuses.size(), 3U);
  EXPECT_EQ(host->statuses[0].signalStrength, 0U);
  EXPECT_EQ(host->statuses[2].signalStrength, 0U);
}

TEST_F(PhoneStatusEndpointTest, EachStatusHasAnArrayOfItsOwn) {
  sends(TWO_CALLS);
  sends(TWO_CALLS);
  ASSERT_EQ(host->statuses.size(), 2U);
  EXPECT_NE(host->statuses[0].calls, host->statuses[1].calls);
  host->statuses[0].calls[0].callerId = "changed";
  EXPECT_EQ(host->statuses[1].calls[0].callerId, "Al");
}

TEST_F(PhoneStatusEndpointTest, WithoutCallbacksAStatusCountsAsHandled) {
  PhoneStatusEndpoint deaf(SERVICE, link.router(), shared_ptr<IPhoneStatusCallbacks>());
  endpoint = &deaf;
  EXPECT_EQ(routed(TWO_CALLS), STATUS_SUCCESS);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(PhoneStatusEndpointTest, SendsAKeyAlone) {
  EXPECT_EQ(phone.reportAction("", "", 5), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02"      // MESSAGE_PHONE_STATUS_INPUT
                                        "0A 02"      // input
                                        "08 05")));  // action: enter
}

TEST_F(PhoneStatusEndpointTest, SendsAKeyWithWhatIsKnownOfTheCall) {
  phone.reportAction("110", "", 7);
  phone.reportAction("", "Al", 7);
  phone.reportAction("110", "Al", 1);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02 0A 02 08 07"
                                        "12 03") +
                                      text("110"),  // caller_number
                                  bytes("80 02 0A 02 08 07"
                                        "1A 02") +
                                      text("Al"),  // caller_id
                                  bytes("80 02 0A 02 08 01"
                                        "12 03") +
                                      text("110") +                   // caller_number
                                      bytes("1A 02") + text("Al")));  // caller_id
}

TEST_F(PhoneStatusEndpointTest, RefusesKeysThatTheClusterDoesNotHave) {
  for (const unsigned int action : {0U, 8U, UINT32_MAX}) {
    EXPECT_EQ(phone.reportAction("110", "Al", action), STATUS_INVALID_INPUT);
  }
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(PhoneStatusEndpointTest, DropsKeysOnAClosedChannelAndReportsSuccess) {
  close();
  EXPECT_EQ(phone.reportAction("110", "Al", 5), STATUS_SUCCESS);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(PhoneStatusEndpointTest, AdvertisesItselfAndNothingElse) {
  EXPECT_EQ(advertised(), bytes("0A 04"     // services
                                "08 07"     // id
                                "52 00"));  // phone_status_service
}

TEST_F(PhoneStatusEndpointTest, RefusesWhatDoesNotParse) {
  expectUnparsable(bytes("80 01 0A 02 08 01"), "PhoneStatusEndpoint");        // a call without a duration
  expectUnparsable(bytes("80 01 0A 02 10 01"), "PhoneStatusEndpoint");        // a call without a state
  expectUnparsable(bytes("80 01 0A 04 08 07 10 01"), "PhoneStatusEndpoint");  // no such state
  expectUnparsable(bytes("80 01 0A 7F"), "PhoneStatusEndpoint");              // cut off
  EXPECT_TRUE(host->statuses.empty());
}

TEST_F(PhoneStatusEndpointTest, RefusesEveryOtherType) {
  expectUnknownTypes({0x8000, 0x8002, 0x8003, 0, 255, 0xFFFF});
}

}  // namespace
}  // namespace test
