#include "ServiceTest.h"
#include "VantryVerificationVendorExtension.h"
#include "VantryVerificationVendorExtensionCallbackRouter.h"

namespace test {
namespace {

/// Notes every call as the operation's name and the record, serialized again.
struct RecordingHarness : IVantryVerificationCallbacks {
  int onSetSensor(VantryVerificationSetSensor const& message) override { return note("set sensor", message); }
  int onVideoFocus(VantryVerificationVideoFocus const& message) override {
    return note("video focus", message);
  }
  int onInjectInput(VantryVerificationInjectInput const& message) override {
    return note("inject input", message);
  }
  int onScreenCaptureRequest(VantryVerificationScreenCaptureRequest const& message) override {
    return note("screen capture", message);
  }
  int onDisplayInformationRequest(VantryVerificationDisplayInformationRequest const& message) override {
    return note("display information", message);
  }
  int onAudioFocus(VantryVerificationAudioFocus const& message) override {
    return note("audio focus", message);
  }

  int note(const std::string& operation, const google::protobuf::MessageLite& message) {
    calls.emplace_back(operation, text(message.SerializeAsString()));
    return answer;
  }

  std::vector<std::pair<std::string, Bytes>> calls;
  int answer = STATUS_SUCCESS;
};

struct VerificationRouterTest : ServiceTest {
  RecordingHarness* const harness = new RecordingHarness();  // owned by the pointer below
  shared_ptr<IVendorExtensionCallbacks> router{
      new VantryVerificationVendorExtensionCallbackRouter(shared_ptr<IVantryVerificationCallbacks>(harness))};
  VantryVerificationVendorExtension extension{SERVICE, link.router(), router};
  VerificationRouterTest() { open(&extension); }

  /// What the router makes of a message, which ends where its memory ends.
  int dispatched(Bytes wholeMessage) {
    wholeMessage.shrink_to_fit();
    return router->dataAvailable(wholeMessage.data(), static_cast<unsigned int>(wholeMessage.size()));
  }

  /// The message reaches the harness, with `body` and nothing else.
  void expectCall(const Bytes& wholeMessage, const std::string& operation, const Bytes& body) {
    harness->calls.clear();
    sends(wholeMessage);
    EXPECT_THAT(harness->calls, ElementsAre(std::pair(operation, body)));
    EXPECT_THAT(sent(), IsEmpty());
    EXPECT_THAT(log.all(), IsEmpty());
  }

  /// The message reaches no operation, and the phone hears so; `debugLines` matches what else the log says.
  template <class DebugLines>
  void expectNoCall(const Bytes& wholeMessage, DebugLines debugLines) {
    log.clear();
    EXPECT_EQ(dispatched(wholeMessage), STATUS_UNEXPECTED_MESSAGE);
    EXPECT_THAT(log.debug(), debugLines);
    sends(wholeMessage);
    EXPECT_THAT(sent(), ElementsAre(unexpectedMessage()));
    EXPECT_THAT(harness->calls, IsEmpty());
  }

  void expectParseFailure(const Bytes& wholeMessage) {
    expectNoCall(wholeMessage,
                 ElementsAre(parseFailureIn("VantryVerificationVendorExtensionCallbackRouter")));
  }
};

/// Field `number`, holding `body`, below 128 bytes.
Bytes field(int number, const Bytes& body) {
  const int tag = number * 8 + 2;
  std::vector<int> head{tag, static_cast<int>(body.size())};
  if (tag >= 128)
    head = {tag % 128 + 128, tag / 128, static_cast<int>(body.size())};  // a varint of two bytes
  Bytes result;
  for (const int byte : head) result.push_back(static_cast<std::uint8_t>(byte));
  return result + body;
}

const Bytes UNKNOWN = bytes("F8 01 2A");  // field 31, which no record has

TEST_F(VerificationRouterTest, SetsSensors) {
  const Bytes body = bytes(
      "0A 04"          // sensors
      "1A 02 08 05");  // speed_data: speed_e3 5
  expectCall(bytes("80 01") + body, "set sensor", body);
}

TEST_F(VerificationRouterTest, SetsNoSensorsAtAll) { expectCall(bytes("80 01"), "set sensor", {}); }

TEST_F(VerificationRouterTest, ForcesVideoFocus) {
  const Bytes body = bytes(
      "08 02"    // video_focus_mode 2
      "10 01"    // deny
      "18 00");  // unsolicited
  expectCall(bytes("80 03") + body, "video focus", body);
}

TEST_F(VerificationRouterTest, ForcesAudioFocus) {
  const Bytes body = bytes(
      "08 03"    // audio_focus_state 3
      "10 05"    // channel
      "18 01");  // unsolicited
  expectCall(bytes("80 04") + body, "audio focus", body);
}

TEST_F(VerificationRouterTest, InjectsInput) {
  const Bytes body = bytes(
      "0A 0C"                // input
      "08 01"                // timestamp
      "22 08"                // key_event
      "0A 06"                // keys
      "08 04 10 01 18 00");  // keycode 4, down, metastate 0
  expectCall(bytes("80 05") + body, "inject input", body);
}

TEST_F(VerificationRouterTest, AsksForThePictureAndTheSizeOfTheScreen) {
  expectCall(bytes("80 08"), "screen capture", {});
  expectCall(bytes("80 0A"), "display information", {});
}

TEST_F(VerificationRouterTest, ReturnsWhatTheHarnessReturns) {
  harness->answer = 5;
  for (const char* const message :
       {"80 01", "80 03 08 01", "80 04 08 01 10 05", "80 05 0A 02 08 01", "80 08", "80 0A"}) {
    EXPECT_EQ(dispatched(bytes(message)), 5);
  }
  EXPECT_EQ(harness->calls.size(), 6U);
  sends(bytes("80 08"));
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(VerificationRouterTest, AHarnessThatExpectsNoSuchMessageMakesThePhoneHearSo) {
  harness->answer = STATUS_UNEXPECTED_MESSAGE;
  sends(bytes("80 08"));
  EXPECT_THAT(sent(), ElementsAre(unexpectedMessage()));
}

TEST_F(VerificationRouterTest, RefusesTypesWithoutAnOperation) {
  // The head unit's own answers, the bug report, and numbers that are nobody's.
  for (const int type : {0x8000, 0x8002, 0x8006, 0x8007, 0x8009, 0x800B, 0x800C, 1, 2, 255, 0xFFFF}) {
    SCOPED_TRACE(type);
    expectNoCall(message(type), IsEmpty());
  }
}

TEST_F(VerificationRouterTest, RefusesWhatDoesNotParse) {
  expectParseFailure(bytes("80 01 0A 04 0A 02 08 01"));              // a location without its latitude
  expectParseFailure(bytes("80 01 0A 7F"));                          // cut off
  expectParseFailure(bytes("80 03"));                                // no video_focus_mode
  expectParseFailure(bytes("80 03 08 03"));                          // no such video_focus_mode
  expectParseFailure(bytes("80 04 08 01"));                          // no channel
  expectParseFailure(bytes("80 04 10 01"));                          // no audio_focus_state
  expectParseFailure(bytes("80 04 08 08 10 01"));                    // no such audio_focus_state
  expectParseFailure(bytes("80 05"));                                // no input
  expectParseFailure(bytes("80 05 0A 02 10 01"));                    // an input without a timestamp
  expectParseFailure(bytes("80 05 0A 08 08 01 1A 04 0A 02 08 01"));  // a pointer without its y
  expectParseFailure(bytes("80 08 0A"));                             // cut off, though nothing in it counts
  expectParseFailure(bytes("80 0A FF"));
}

TEST_F(VerificationRouterTest, RefusesAMessageTooShortForAType) {
  expectParseFailure(bytes("80"));
  unsigned char nothing = 0;
  log.clear();
  EXPECT_EQ(router->dataAvailable(&nothing, 0), STATUS_UNEXPECTED_MESSAGE);
  EXPECT_THAT(log.debug(), ElementsAre(parseFailureIn("VantryVerificationVendorExtensionCallbackRouter")));
}

TEST_F(VerificationRouterTest, ForgetsUnknownFieldsOfFlatRecords) {
  expectCall(bytes("80 03 08 02") + UNKNOWN, "video focus", bytes("08 02"));
  expectCall(bytes("80 04 08 03 10 05") + UNKNOWN, "audio focus", bytes("08 03 10 05"));
  expectCall(bytes("80 08") + UNKNOWN, "screen capture", {});
  expectCall(bytes("80 0A") + UNKNOWN, "display information", {});
}

TEST_F(VerificationRouterTest, ForgetsKnownFieldsOfTheWrongWireTypeAndInvalidOptionalEnumerations) {
  expectCall(bytes("80 03 08 02"
                   "12 01 41"),  // deny, as bytes
             "video focus", bytes("08 02"));
  expectCall(bytes("80 05 0A 06 08 01"
                   "1A 02 18 03"),  // touch_event with the action 3
             "inject input", bytes("0A 04 08 01 1A 00"));
}

/// A value of sensor `type`, with `tail` behind its fields and, for satellites, behind those of the
/// satellite.
Bytes sensorValue(int type, const Bytes& tail) {
  switch (type) {
    case SENSOR_LOCATION: return bytes("08 01 10 02 18 03") + tail;
    case SENSOR_DIAGNOSTICS: return bytes("0A 01 41") + tail;
    case SENSOR_GPS_SATELLITE: return bytes("08 01") + field(3, bytes("08 01 10 02 18 01") + tail) + tail;
  }
  return bytes("08 01") + tail;
}

Bytes sensors(int type, const Bytes& tail) {
  const Bytes value = field(type, sensorValue(type, tail));
  return field(1, value + value + tail) + tail;
}

TEST_F(VerificationRouterTest, ForgetsUnknownFieldsInEverySensorAtEveryDepth) {
  for (int type = SENSOR_LOCATION; type <= SENSOR_GPS_SATELLITE; ++type) {
    SCOPED_TRACE(type);
    expectCall(bytes("80 01") + sensors(type, UNKNOWN), "set sensor", sensors(type, {}));
  }
}

/// An input report whose event, in field `event`, has two elements with the fields of `element`; `tail`
/// behind all.
Bytes input(int event, const Bytes& element, const Bytes& tail) {
  const Bytes elements = field(1, element + tail) + field(1, element + tail) + tail;
  return field(1, bytes("08 01") + field(event, elements) + tail) + tail;
}

TEST_F(VerificationRouterTest, ForgetsUnknownFieldsInEveryInputEventAtEveryDepth) {
  const Bytes three = bytes("08 01 10 01 18 01");  // a pointer or a key
  const Bytes two = bytes("08 01 10 01");          // an absolute or relative control
  for (const auto& [event, element] : {std::pair(3, three), {4, three}, {5, two}, {6, two}, {7, three}}) {
    SCOPED_TRACE(event);
    expectCall(bytes("80 05") + input(event, element, UNKNOWN), "inject input", input(event, element, {}));
  }
}

TEST_F(VerificationRouterTest, ARecordOfWhichAMebibyteWasNotSentIsTakenAndOneThatLacksMoreIsNot) {
  const Bytes request = bytes("80 08 FA 01");  // screen capture, and a field 31 that is only announced
  const auto announce = [&](unsigned int total, const Bytes& fieldLength) {
    link.feeds(firstFrame(CHANNEL, FIRST | ENCRYPTED, total, request + fieldLength));
    link.feeds(frame(CHANNEL, LAST | ENCRYPTED, {}));
  };
  announce(0x100007, bytes("80 80 40"));
  EXPECT_THAT(harness->calls, ElementsAre(std::pair("screen capture", Bytes())));
  announce(0x100008, bytes("81 80 40"));
  EXPECT_EQ(harness->calls.size(), 1U);
  EXPECT_THAT(sent(), ElementsAre(unexpectedMessage()));
}

}  // namespace
}  // namespace test
