#include <gmock/gmock.h>
#include <spdlog/sinks/ostream_sink.h>
#include <spdlog/spdlog.h>

#include <sstream>

#include "ServiceTest.h"
#include "headunit/Controls.h"
#include "headunit/TouchScript.h"

namespace headunit {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// ---- Fingers ----

std::vector<unsigned int> idsOf(const TouchChange& change) {
  std::vector<unsigned int> ids;
  for (const Finger& finger : change.fingers) ids.push_back(finger.id);
  return ids;
}

TEST(HeadunitFingers, TellTheFirstAndTheLastFromTheOthers) {
  Fingers fingers;
  EXPECT_EQ(fingers.down({7, 1, 2})->action, 0);
  EXPECT_EQ(fingers.down({8, 3, 4})->action, 5);
  EXPECT_EQ(fingers.up(7)->action, 6);
  EXPECT_EQ(fingers.up(8)->action, 1);
}

TEST(HeadunitFingers, TellWhichOneMoved) {
  Fingers fingers;
  fingers.down({7, 1, 2});
  fingers.down({8, 3, 4});
  const TouchChange change = fingers.move({8, 30, 40}).value();
  EXPECT_EQ(change.action, 2);
  EXPECT_EQ(change.index, 1);
  EXPECT_THAT(idsOf(change), ElementsAre(7U, 8U));
  EXPECT_EQ(change.fingers[1].x, 30U);
}

TEST(HeadunitFingers, StillNameOneThatLeaves) {
  Fingers fingers;
  fingers.down({7, 1, 2});
  fingers.down({8, 3, 4});
  const TouchChange change = fingers.up(7).value();
  EXPECT_EQ(change.index, 0);
  EXPECT_THAT(idsOf(change), ElementsAre(7U, 8U));
  EXPECT_THAT(idsOf(fingers.up(8).value()), ElementsAre(8U));
}

TEST(HeadunitFingers, TellNothingOfNothing) {
  Fingers fingers;
  EXPECT_FALSE(fingers.up(7));
  EXPECT_FALSE(fingers.move({7, 1, 2}));
  fingers.down({7, 1, 2});
  EXPECT_FALSE(fingers.down({7, 5, 5}));
  EXPECT_FALSE(fingers.move({7, 1, 2}));
}

// ---- Keys ----

TEST(HeadunitKeyHolder, PressesOnceHoweverOftenTheKeyboardRepeats) {
  KeyHolder keys;
  const TimePoint now = TimePoint(std::chrono::seconds(1));
  EXPECT_THAT(keys.press(19, MODIFIER_SHIFT, now), SizeIs(1));
  EXPECT_THAT(keys.press(19, MODIFIER_SHIFT, now), IsEmpty());
  const std::vector<KeyAction> released = keys.release(19, 0);
  ASSERT_THAT(released, SizeIs(1));
  EXPECT_EQ(released[0].kind, KeyAction::Kind::release);
  EXPECT_THAT(keys.release(19, 0), IsEmpty());
}

TEST(HeadunitKeyHolder, FindsALongPressOnce) {
  KeyHolder keys;
  const TimePoint now = TimePoint(std::chrono::seconds(1));
  EXPECT_EQ(keys.next(), TimePoint::max());
  keys.press(19, MODIFIER_ALT, now);
  EXPECT_EQ(keys.next(), now + KeyHolder::LONG);
  EXPECT_THAT(keys.due(now + KeyHolder::LONG - milliseconds(1)), IsEmpty());
  const std::vector<KeyAction> actions = keys.due(now + KeyHolder::LONG);
  ASSERT_THAT(actions, SizeIs(1));
  EXPECT_EQ(actions[0].kind, KeyAction::Kind::longPress);
  EXPECT_EQ(actions[0].code, 19U);
  EXPECT_EQ(actions[0].modifiers, MODIFIER_ALT);
  EXPECT_EQ(keys.next(), TimePoint::max());
}

TEST(HeadunitKeyHolder, ForgetsAKeyThatIsReleasedInTime) {
  KeyHolder keys;
  const TimePoint now = TimePoint(std::chrono::seconds(1));
  keys.press(19, 0, now);
  keys.release(19, 0);
  EXPECT_THAT(keys.due(now + KeyHolder::LONG), IsEmpty());
}

// ---- What the phone hears ----

struct HeadunitControls : test::ServiceTest {
  InputSource input{SERVICE, link.router()};
  Controls controls;
  ControlTotals totals;
  static constexpr Size SMALL{800, 480};

  HeadunitControls() {
    input.setSupportedKeycodes({19, static_cast<int>(KNOB)});
    open(&input);
    KeyBindingRequest request;
    request.add_keycodes(19);
    request.add_keycodes(static_cast<int>(KNOB));
    sends(test::message(MESSAGE_KEY_BINDING_REQUEST, request));
    sent();
    controls.attach(&input, &totals);
  }

  /// The one report that the phone has got since the last look.
  InputReport heard() {
    const std::vector<test::Bytes> messages = sent();
    InputReport report;
    EXPECT_THAT(messages, SizeIs(1));
    if (messages.size() != 1) return report;
    EXPECT_TRUE(report.ParseFromArray(messages[0].data() + 2, static_cast<int>(messages[0].size()) - 2));
    return report;
  }
};

TEST_F(HeadunitControls, TouchesComeInTheCoordinatesOfTheScreenThatWasOffered) {
  controls.touchDown(3, {0, 0}, SMALL);
  InputReport report = heard();
  ASSERT_EQ(report.touch_event().pointer_data_size(), 1);
  EXPECT_EQ(report.touch_event().pointer_data(0).pointer_id(), 3U);
  EXPECT_EQ(report.touch_event().pointer_data(0).x(), 1U);  // the middle of the first of 800 pixels, in 1920
  EXPECT_EQ(report.touch_event().pointer_data(0).y(), 1U);
  EXPECT_EQ(report.touch_event().action(), 0);
  controls.touchMove(3, {799, 479}, SMALL);
  report = heard();
  EXPECT_EQ(report.touch_event().pointer_data(0).x(), 1918U);
  EXPECT_EQ(report.touch_event().pointer_data(0).y(), 1078U);
  EXPECT_EQ(report.touch_event().action(), 2);
}

TEST_F(HeadunitControls, EveryPixelOfEveryPictureComesBackFromTheScreen) {
  for (const Size size : {SMALL, Size{1280, 720}, TOUCH_SCREEN}) {
    for (int x = 0; x < size.width; ++x) {
      controls.touchDown(1, {x, 0}, size);
      const auto onScreen = static_cast<int>(heard().touch_event().pointer_data(0).x());
      ASSERT_EQ(onScreen * size.width / TOUCH_SCREEN.width, x);
      controls.touchUp(1);
      sent();
    }
  }
}

TEST_F(HeadunitControls, KeysArePressedHeldAndReleased) {
  controls.key({KeyAction::Kind::press, 19, MODIFIER_SHIFT});
  InputReport report = heard();
  EXPECT_EQ(report.key_event().keys(0).keycode(), 19U);
  EXPECT_TRUE(report.key_event().keys(0).down());
  EXPECT_EQ(report.key_event().keys(0).metastate(), 1U);
  controls.key({KeyAction::Kind::longPress, 19, 0});
  EXPECT_TRUE(heard().key_event().keys(0).longpress());
  controls.key({KeyAction::Kind::release, 19, 0});
  EXPECT_FALSE(heard().key_event().keys(0).down());
}

TEST_F(HeadunitControls, TheKnobTurns) {
  controls.turn(-2);
  const InputReport report = heard();
  EXPECT_EQ(report.relative_event().data(0).keycode(), KNOB);
  EXPECT_EQ(report.relative_event().data(0).delta(), -2);
}

TEST_F(HeadunitControls, CountWhatTheyReport) {
  controls.touchDown(1, {1, 1}, SMALL);
  controls.touchUp(1);
  controls.key({KeyAction::Kind::press, 19, 0});
  controls.key({KeyAction::Kind::press, 20, 0});  // the phone has not bound it
  controls.turn(1);
  EXPECT_EQ(totals.touches, 2U);
  EXPECT_EQ(totals.keys, 1U);
  EXPECT_EQ(totals.turns, 1U);
}

TEST_F(HeadunitControls, SayNothingWithoutAPhone) {
  controls.touchDown(1, {1, 1}, SMALL);
  sent();
  controls.detach();
  controls.touchMove(1, {2, 2}, SMALL);
  controls.key({KeyAction::Kind::press, 19, 0});
  controls.turn(1);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(HeadunitControls, TheNextPhoneHearsNothingOfFingersThatWereMeantForTheLast) {
  controls.touchDown(1, {1, 1}, SMALL);
  sent();
  controls.attach(&input, &totals);
  controls.touchUp(1);
  EXPECT_THAT(sent(), IsEmpty());
  controls.touchDown(1, {1, 1}, SMALL);
  EXPECT_EQ(heard().touch_event().action(), 0);
}

TEST_F(HeadunitControls, TheNextPhoneHearsNothingOfKeysThatWerePressedForTheLast) {
  controls.key({KeyAction::Kind::press, 19, 0});
  sent();
  controls.attach(&input, &totals);
  controls.key({KeyAction::Kind::longPress, 19, 0});
  controls.key({KeyAction::Kind::release, 19, 0});
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_EQ(totals.keys, 1U);
  controls.key({KeyAction::Kind::press, 19, 0});
  EXPECT_TRUE(heard().key_event().keys(0).down());
  controls.key({KeyAction::Kind::release, 19, 0});
  EXPECT_FALSE(heard().key_event().keys(0).down());
}

TEST_F(HeadunitControls, AKeyIsReleasedOnce) {
  controls.key({KeyAction::Kind::press, 19, 0});
  controls.key({KeyAction::Kind::release, 19, 0});
  sent();
  controls.key({KeyAction::Kind::release, 19, 0});
  EXPECT_THAT(sent(), IsEmpty());
}

// ---- The scripted finger ----

TEST(HeadunitTouchScript, ReadsPlaceAndPeriod) {
  const auto script = parseTouchScript("12,340,250");
  ASSERT_TRUE(script);
  EXPECT_EQ(script->place.x, 12);
  EXPECT_EQ(script->place.y, 340);
  EXPECT_EQ(script->every, milliseconds(250));
  for (const char* const text : {"", "1,2", "1,2,", "1,2,3,4", "1,2,x", "-1,2,3", "1,2,0", "1, 2,3"}) {
    EXPECT_FALSE(parseTouchScript(text)) << text;
  }
}

TEST_F(HeadunitControls, AScriptTapsOnceThereIsAPicture) {
  Size picture;
  TouchPlayer player({{200, 300}, milliseconds(100)}, &controls, [&picture] { return picture; });
  const TimePoint start = TimePoint(std::chrono::seconds(1));
  EXPECT_GT(player.act(start), start);
  EXPECT_THAT(sent(), IsEmpty());
  picture = SMALL;
  EXPECT_EQ(player.act(start), start + milliseconds(50));
  EXPECT_EQ(heard().touch_event().pointer_data(0).x() * 800 / 1920, 200U);
  player.act(start + milliseconds(50));
  EXPECT_EQ(heard().touch_event().action(), 1);
}

/// What is logged while it lives.
struct LoggedLines {
  std::ostringstream lines;
  const std::shared_ptr<spdlog::logger> before = spdlog::default_logger();

  LoggedLines() {
    const auto sink = std::make_shared<spdlog::sinks::ostream_sink_mt>(lines);
    sink->set_pattern("%v");
    spdlog::set_default_logger(std::make_shared<spdlog::logger>("test", sink));
  }
  ~LoggedLines() { spdlog::set_default_logger(before); }
};

TEST_F(HeadunitControls, AScriptTapsNothingBesideThePictureAndSaysSoOnce) {
  const LoggedLines logged;
  for (const Point beside : {Point{800, 479}, Point{799, 480}, Point{5000, 5000}}) {
    TouchPlayer player({beside, milliseconds(100)}, &controls, [] { return SMALL; });
    player.act(TimePoint(std::chrono::seconds(1)));
    player.act(TimePoint(std::chrono::seconds(2)));
  }
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_EQ(logged.lines.str(),
            "Nothing is tapped: 800,479 is no place of a picture of 800x480 pixels; check --touch.\n"
            "Nothing is tapped: 799,480 is no place of a picture of 800x480 pixels; check --touch.\n"
            "Nothing is tapped: 5000,5000 is no place of a picture of 800x480 pixels; check --touch.\n");
}

TEST_F(HeadunitControls, AScriptTapsTheLastPixelAndLooksAtEachPicture) {
  Size picture = SMALL;
  const LoggedLines logged;
  TouchPlayer player({{799, 479}, milliseconds(100)}, &controls, [&picture] { return picture; });
  const TimePoint start = TimePoint(std::chrono::seconds(1));
  player.act(start);
  EXPECT_EQ(heard().touch_event().action(), 0);
  picture = {640, 480};
  player.act(start);
  EXPECT_EQ(heard().touch_event().action(), 1) << "a finger that is down comes up in any case";
  EXPECT_GT(player.act(start), start);
  EXPECT_THAT(sent(), IsEmpty());
  picture = SMALL;
  player.act(start);
  EXPECT_EQ(heard().touch_event().action(), 0);
  EXPECT_THAT(logged.lines.str(), testing::HasSubstr("799,479 is no place of a picture of 640x480 pixels"));
}

}  // namespace
}  // namespace headunit
