#include "InputSource.h"

#include "FailingCalls.h"
#include "ManyThreads.h"
#include "ServiceTest.h"

namespace test {
namespace {

struct InputSourceTest : ServiceTest {
  InputSource input{SERVICE, link.router()};

  InputSourceTest() {
    input.setSupportedKeycodes({3, 4, 84, 300});
    open(&input);
  }

  static Bytes bindingRequest(const Bytes& body) { return message(MESSAGE_KEY_BINDING_REQUEST, body); }

  /// The phone binds `keycodes`, each below 128, and what that makes the head unit send is set aside.
  void binds(const Bytes& keycodes) {
    sends(bindingRequest(bytes("0A") + filled(1, static_cast<std::uint8_t>(keycodes.size())) + keycodes));
    EXPECT_THAT(sent(), ElementsAre(accepted()));
  }

  static Bytes accepted() { return bytes("80 03 08 00"); }
  static Bytes refused() { return bytes("80 03 08 EE FF FF FF FF FF FF FF FF 01"); }  // status -18
};

// ---- Discovery ----

TEST_F(InputSourceTest, IsDiscoveredWithKeycodesOnlyInAscendingOrder) {
  input.setSupportedKeycodes({300, 84, -1, 3});
  EXPECT_EQ(advertised(), bytes("0A 14"                          // services
                                "08 07"                          // id 7
                                "22 10"                          // input_source_service
                                "0A 0E"                          // keycodes_supported, packed
                                "FF FF FF FF FF FF FF FF FF 01"  // -1
                                "03"                             // 3
                                "54"                             // 84
                                "AC 02"));                       // 300
}

TEST_F(InputSourceTest, IsDiscoveredWithTouchScreenAndTouchPad) {
  input.setSupportedKeycodes({3});
  input.setTouchScreenPresent(true);
  input.setTouchScreenWidth(800);
  input.setTouchScreenHeight(480);
  input.setTouchPadPresent(true);
  input.setTouchPadWidth(100);
  input.setTouchPadHeight(300);
  EXPECT_EQ(advertised(), bytes("0A 16"        // services
                                "08 07"        // id 7
                                "22 12"        // input_source_service
                                "0A 01 03"     // keycodes_supported
                                "12 06"        // touchscreen
                                "08 A0 06"     // width 800
                                "10 E0 03"     // height 480
                                "1A 05"        // touchpad
                                "08 64"        // width 100
                                "10 AC 02"));  // height 300
}

TEST_F(InputSourceTest, IsDiscoveredWithTheOneThatIsPresent) {
  input.setSupportedKeycodes({});
  input.setTouchScreenWidth(800);
  input.setTouchScreenHeight(480);
  EXPECT_EQ(advertised(), bytes("0A 04 08 07 22 00"));
  input.setTouchPadPresent(true);
  EXPECT_EQ(advertised(), bytes("0A 0A 08 07 22 06 1A 04 08 00 10 00"));  // sizes are present, 0 or not
  input.setTouchPadPresent(false);
  input.setTouchScreenPresent(true);
  EXPECT_EQ(advertised(), bytes("0A 0C 08 07 22 08 12 06 08 A0 06 10 E0 03"));
}

// ---- Touches ----

const unsigned int IDS[] = {0, 5, 4294967295U};
const unsigned int XS[] = {1, 799, 0};
const unsigned int YS[] = {300, 2, 4294967295U};

TEST_F(InputSourceTest, ReportsEveryPointerOfATouch) {
  EXPECT_EQ(input.reportTouch(300, 2, IDS, XS, YS, 5, 1), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 01"      // MESSAGE_INPUT_REPORT
                                        "08 AC 02"   // timestamp 300
                                        "1A 16"      // touch_event
                                        "0A 07"      // pointer_data
                                        "08 01"      // x 1
                                        "10 AC 02"   // y 300
                                        "18 00"      // pointer_id 0
                                        "0A 07"      // pointer_data
                                        "08 9F 06"   // x 799
                                        "10 02"      // y 2
                                        "18 05"      // pointer_id 5
                                        "10 01"      // action_index 1
                                        "18 05")));  // action 5
}

TEST_F(InputSourceTest, ReportsATouchOfTheTouchPadInAFieldOfItsOwn) {
  EXPECT_EQ(input.reportTouchPad(0xFFFFFFFFFFFFFFFF, 1, IDS + 2, XS + 2, YS + 2, 2, 0), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 01"                             // MESSAGE_INPUT_REPORT
                                        "08 FF FF FF FF FF FF FF FF FF 01"  // timestamp, the largest
                                        "3A 14"                             // touchpad_event
                                        "0A 0E"                             // pointer_data
                                        "08 00"                             // x 0
                                        "10 FF FF FF FF 0F"                 // y, the largest
                                        "18 FF FF FF FF 0F"                 // pointer_id, the largest
                                        "10 00"                             // action_index 0
                                        "18 02")));                         // action 2
}

TEST_F(InputSourceTest, ReportsATouchWithoutPointersWithItsActionAlone) {
  for (const int none : {0, -1}) {
    EXPECT_EQ(input.reportTouch(0, none, nullptr, nullptr, nullptr, 1, 0), STATUS_SUCCESS);
    EXPECT_EQ(input.reportTouchPad(0, none, nullptr, nullptr, nullptr, 1, 0), STATUS_SUCCESS);
    EXPECT_THAT(sent(), ElementsAre(bytes("80 01 08 00 1A 04 10 00 18 01"),  //
                                    bytes("80 01 08 00 3A 04 10 00 18 01")));
  }
}

TEST_F(InputSourceTest, PassesAnActionIndexOnUnchecked) {
  input.reportTouch(0, 0, nullptr, nullptr, nullptr, 0, -1);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 01 08 00 1A 08 10 FF FF FF FF 0F 18 00")));
}

TEST_F(InputSourceTest, PassesEveryActionThatExists) {
  for (const int action : {0, 1, 2, 5, 6}) {
    EXPECT_EQ(input.reportTouch(0, 0, nullptr, nullptr, nullptr, action, 0), STATUS_SUCCESS);
    EXPECT_THAT(sent(), ElementsAre(bytes("80 01 08 00 1A 04 10 00 18") +
                                    filled(1, static_cast<std::uint8_t>(action))));
  }
}

TEST_F(InputSourceTest, EndsTheProcessForAnActionThatDoesNotExist) {
  for (const int action : {-1, 3, 4, 7}) {
    EXPECT_DEATH(input.reportTouch(0, 0, nullptr, nullptr, nullptr, action, 0),
                 "::PointerAction_IsValid\\(value\\)");
    EXPECT_DEATH(input.reportTouchPad(0, 0, nullptr, nullptr, nullptr, action, 0),
                 "::PointerAction_IsValid\\(value\\)");
  }
}

// ---- Keys and knobs ----

TEST_F(InputSourceTest, KeysAreBoundBeforeThePhoneCanHaveTheAnswer) {
  int result = STATUS_INVALID_KEYCODE;
  const EventAtPost answered([&] { result = input.reportKey(0, 3, true, 0); });
  sends(bindingRequest(bytes("0A 01 03")));
  EXPECT_EQ(result, STATUS_SUCCESS);
  const std::vector<Bytes> messages = sent();
  ASSERT_EQ(messages.size(), 2U);
  EXPECT_EQ(messages[0], accepted());
  EXPECT_EQ(part(messages[1], 0, 2), bytes("80 01")) << "MESSAGE_INPUT_REPORT";
}

TEST_F(InputSourceTest, RefusesEveryKeyBeforeAnyBindingAndTakesTouches) {
  EXPECT_EQ(input.reportKey(0, 3, true, 0), STATUS_INVALID_KEYCODE);
  EXPECT_EQ(input.reportKeyLongPress(0, 3, 0), STATUS_INVALID_KEYCODE);
  EXPECT_EQ(input.reportAbsolute(0, 3, 1), STATUS_INVALID_KEYCODE);
  EXPECT_EQ(input.reportRelative(0, 3, 1), STATUS_INVALID_KEYCODE);
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_EQ(input.reportTouch(0, 0, nullptr, nullptr, nullptr, 0, 0), STATUS_SUCCESS);
  EXPECT_EQ(sent().size(), 1U);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(InputSourceTest, ReportsAKeyWithAllItsFieldsPresent) {
  binds(bytes("54"));
  EXPECT_EQ(input.reportKey(300, 84, true, 4294967295U), STATUS_SUCCESS);
  EXPECT_EQ(input.reportKey(301, 84, false, 0), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 01"              // MESSAGE_INPUT_REPORT
                                        "08 AC 02"           // timestamp 300
                                        "22 0E"              // key_event
                                        "0A 0C"              // keys
                                        "08 54"              // keycode 84
                                        "10 01"              // down
                                        "18 FF FF FF FF 0F"  // metastate, the largest
                                        "20 00"),            // longpress
                                  bytes("80 01"              // MESSAGE_INPUT_REPORT
                                        "08 AD 02"           // timestamp 301
                                        "22 0A"              // key_event
                                        "0A 08"              // keys
                                        "08 54"              // keycode 84
                                        "10 00"              // up
                                        "18 00"              // metastate 0
                                        "20 00")));          // longpress
}

TEST_F(InputSourceTest, ReportsALongPressAsDown) {
  binds(bytes("03"));
  EXPECT_EQ(input.reportKeyLongPress(0, 3, 0), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 01 08 00 22 0A 0A 08"
                                        "08 03"      // keycode 3
                                        "10 01"      // down
                                        "18 00"      // metastate 0
                                        "20 01")));  // longpress
}

TEST_F(InputSourceTest, ReportsThePositionOfAControl) {
  binds(bytes("03"));
  EXPECT_EQ(input.reportAbsolute(1, 3, -1), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 01"                                 // MESSAGE_INPUT_REPORT
                                        "08 01"                                 // timestamp 1
                                        "2A 0F"                                 // absolute_event
                                        "0A 0D"                                 // data
                                        "08 03"                                 // keycode 3
                                        "10 FF FF FF FF FF FF FF FF FF 01")));  // value -1
}

TEST_F(InputSourceTest, ReportsTheMovementOfAControl) {
  binds(bytes("03"));
  EXPECT_EQ(input.reportRelative(1, 3, -2), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 01"                                 // MESSAGE_INPUT_REPORT
                                        "08 01"                                 // timestamp 1
                                        "32 0F"                                 // relative_event
                                        "0A 0D"                                 // data
                                        "08 03"                                 // keycode 3
                                        "10 FE FF FF FF FF FF FF FF FF 01")));  // delta -2
}

TEST_F(InputSourceTest, TakesAReportOnAClosedChannelAndDropsIt) {
  binds(bytes("03"));
  close();
  EXPECT_EQ(input.reportKey(0, 3, true, 0), STATUS_SUCCESS);
  EXPECT_EQ(input.reportAbsolute(0, 3, 0), STATUS_SUCCESS);
  EXPECT_EQ(input.reportRelative(0, 3, 0), STATUS_SUCCESS);
  EXPECT_EQ(input.reportTouch(0, 0, nullptr, nullptr, nullptr, 0, 0), STATUS_SUCCESS);
  EXPECT_EQ(input.reportKey(0, 4, true, 0), STATUS_INVALID_KEYCODE);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(InputSourceTest, KeepsItsBindingsThroughACloseAndAnOpen) {
  binds(bytes("03"));
  close();
  link.opens(CHANNEL, SERVICE);
  EXPECT_EQ(input.reportKey(0, 3, true, 0), STATUS_SUCCESS);
  EXPECT_EQ(sent().size(), 1U);
}

// ---- Binding ----

TEST_F(InputSourceTest, BindsWhatIsAskedForPackedOrNot) {
  sends(bindingRequest(bytes("0A 03 54 AC 02")));  // packed
  EXPECT_THAT(sent(), ElementsAre(accepted()));
  EXPECT_TRUE(input.isBound(84));
  EXPECT_TRUE(input.isBound(300));
  sends(bindingRequest(bytes("08 03 08 04")));  // unpacked
  EXPECT_THAT(sent(), ElementsAre(accepted()));
  EXPECT_TRUE(input.isBound(3));
  EXPECT_TRUE(input.isBound(4));
}

TEST_F(InputSourceTest, ReplacesTheBindingsByThoseOfTheNextRequest) {
  binds(bytes("03 04"));
  binds(bytes("04 54"));
  EXPECT_FALSE(input.isBound(3));
  EXPECT_TRUE(input.isBound(4));
  EXPECT_TRUE(input.isBound(84));
  EXPECT_EQ(input.reportKey(0, 3, true, 0), STATUS_INVALID_KEYCODE);
}

TEST_F(InputSourceTest, RefusesARequestAsAWholeAndKeepsEarlierBindings) {
  binds(bytes("04"));
  for (const char* const request : {"0A 03 03 E7 07", "0A 03 E7 07 03"}) {  // 3 and 999, in either order
    EXPECT_EQ(routed(bindingRequest(bytes(request))), STATUS_SUCCESS);
    EXPECT_THAT(sent(), ElementsAre(refused()));
    EXPECT_FALSE(input.isBound(3));
    EXPECT_FALSE(input.isBound(999));
    EXPECT_EQ(input.reportKey(0, 4, true, 0), STATUS_SUCCESS);
    EXPECT_EQ(sent().size(), 1U);
  }
}

TEST_F(InputSourceTest, UnbindsAllByARequestWithoutKeycodes) {
  binds(bytes("03"));
  EXPECT_EQ(routed(bindingRequest({})), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(accepted()));
  EXPECT_EQ(input.reportKey(0, 3, true, 0), STATUS_INVALID_KEYCODE);
}

TEST_F(InputSourceTest, TakesARepeatedKeycodeOnce) {
  binds(bytes("03 03 03"));
  EXPECT_EQ(input.reportKey(0, 3, true, 0), STATUS_SUCCESS);
  EXPECT_EQ(sent().size(), 1U);
}

TEST_F(InputSourceTest, BindsKeycodesOfNoNameIfTheyAreSupported) {
  input.setSupportedKeycodes({999, -5});
  sends(
      bindingRequest(bytes("0A 0C"                              // keycodes, packed
                           "E7 07"                              // 999
                           "FB FF FF FF FF FF FF FF FF 01")));  // -5
  EXPECT_THAT(sent(), ElementsAre(accepted()));
  EXPECT_EQ(input.reportKey(0, 999, true, 0), STATUS_SUCCESS);
  EXPECT_EQ(input.reportKey(0, static_cast<unsigned int>(-5), true, 0), STATUS_SUCCESS);
}

TEST_F(InputSourceTest, BindsEvenWhileItsAnswerIsDropped) {
  close();
  EXPECT_EQ(routed(bindingRequest(bytes("0A 01 03"))), STATUS_SUCCESS);
  EXPECT_TRUE(input.isBound(3));
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(InputSourceTest, RefusesABindingThatDoesNotParse) {
  binds(bytes("03"));
  expectUnparsable(bindingRequest(bytes("0A 05 03")), "InputSource");
  EXPECT_TRUE(input.isBound(3));
}

TEST_F(InputSourceTest, AnswersAnyOtherMessageAsUnexpectedWithoutALineOfItsOwn) {
  expectUnknownTypes({0, 1, 0x8000, MESSAGE_INPUT_REPORT, MESSAGE_KEY_BINDING_RESPONSE, 0x8004, 0xFFFF});
}

TEST_F(InputSourceTest, TakesABindingRequestByItsBytes) {
  sends(
      bytes("80 02"                                  // MESSAGE_KEY_BINDING_REQUEST
            "0A 02"                                  // keycodes, packed
            "03 54"));                               // 3, 84
  EXPECT_THAT(sent(), ElementsAre(bytes("80 03"      // MESSAGE_KEY_BINDING_RESPONSE
                                        "08 00")));  // status: success
  EXPECT_TRUE(input.isBound(3));
  EXPECT_TRUE(input.isBound(84));
  EXPECT_FALSE(input.isBound(4));
}

// ---- Threads ----

constexpr unsigned int THREADS = 4;
constexpr unsigned int REPORTS = 1000;

TEST_F(InputSourceTest, SendsExactlyTheReportsThatItTookWhileThePhoneRebinds) {
  binds(bytes("03"));
  std::atomic<unsigned int> taken{0};
  std::atomic<unsigned int> wronglyTaken{0};
  onManyThreads(
      THREADS,
      [&](unsigned int thread) {
        for (unsigned int i = 0; i < REPORTS; ++i) {
          taken += input.reportKey(i, 3, true, thread) == STATUS_SUCCESS;
          taken += input.reportRelative(i, 4, 1) == STATUS_SUCCESS;
          taken += input.reportTouch(i, 2, IDS, XS, YS, 0, 0) == STATUS_SUCCESS;
          wronglyTaken += input.reportAbsolute(i, 84, 1) == STATUS_SUCCESS;
        }
      },
      [&] {
        sends(bindingRequest(bytes("0A 02 03 04")));
        sends(bindingRequest(bytes("0A 01 03")));
        sends(bindingRequest(bytes("0A 03 54 E7 07")));  // refused: 84 is supported, 999 is not
      });
  unsigned int reports = 0;
  unsigned int keys = 0;
  for (const Bytes& each : sent()) {
    if (part(each, 0, 2) != bytes("80 01")) continue;
    InputReport report;
    EXPECT_TRUE(report.ParseFromArray(each.data() + 2, static_cast<int>(each.size()) - 2));
    ++reports;
    keys += report.has_key_event();
  }
  EXPECT_EQ(reports, taken);
  EXPECT_EQ(keys, THREADS * REPORTS);  // 3 was bound all the time: no report ever saw a half-made binding
  EXPECT_EQ(wronglyTaken, 0U);
}

TEST_F(InputSourceTest, SurvivesReportsWhileTheChannelClosesAndOpens) {
  binds(bytes("03"));
  std::atomic<unsigned int> refusals{0};
  const Bytes openRequest = message(MESSAGE_CHANNEL_OPEN_REQUEST, bytes("08 00 10 07"));
  onManyThreads(
      THREADS,
      [&](unsigned int) {
        for (unsigned int i = 0; i < REPORTS; ++i)
          refusals += input.reportKey(i, 3, true, 0) != STATUS_SUCCESS;
      },
      [&] {
        close();
        link.feeds(frame(CHANNEL, ATOMIC | CONTROL | ENCRYPTED, openRequest));
      });
  EXPECT_EQ(refusals, 0U);
  sent();
  input.reportKey(1, 3, true, 0);
  EXPECT_EQ(sent().size(), 1U);
}

}  // namespace
}  // namespace test
