#include <SDL.h>
#include <gmock/gmock.h>

#include "ServiceTest.h"
#include "headunit/media/KeyMap.h"
#include "headunit/media/WindowInput.h"

namespace headunit {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// What the strip's keys have been told.
struct Keys : ClusterKeyListener {
  void clusterKey(ClusterKey key) override {
    pressed.push_back(key);
    heard(key);
  }
  std::function<void(ClusterKey)> heard = [](ClusterKey) {};
  std::vector<ClusterKey> pressed;
};

/// A user at a window of 1300x480, in which a picture of 800x480 stands 100 pixels from the left, and a strip
/// on the right of what is 1000 pixels wide.
struct HeadunitWindowInput : test::ServiceTest {
  InputSource input{SERVICE, link.router()};
  Controls controls;
  ControlTotals totals;
  Keys strip;
  ClusterKeys clusterKeys;
  Cluster cluster;
  WindowInput hands{&controls, &clusterKeys, &cluster};
  WindowView view{{{800, 480}, {0, 0}, {1000, 480}}, {{1300, 480}, {0, 0, 1000, 480}, {1000, 0, 300, 480}}};
  std::vector<StripTarget> targets;

  HeadunitWindowInput() {
    input.setSupportedKeycodes(allKeyCodes());
    open(&input);
    KeyBindingRequest request;
    for (const int code : allKeyCodes()) request.add_keycodes(code);
    sends(test::message(MESSAGE_KEY_BINDING_REQUEST, request));
    sent();
    controls.attach(&input, &totals);
    clusterKeys.attach(&strip);
  }

  InputReport heard() {
    const std::vector<test::Bytes> messages = sent();
    InputReport report;
    EXPECT_THAT(messages, SizeIs(1));
    if (!messages.empty())
      report.ParseFromArray(messages[0].data() + 2, static_cast<int>(messages[0].size()) - 2);
    return report;
  }
  void button(bool down, int x, int y, Uint8 which = SDL_BUTTON_LEFT) {
    SDL_Event event{};
    event.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    event.button.button = which;
    event.button.x = x;
    event.button.y = y;
    hands.handle(event, view, targets);
  }
  void motion(int x, int y) {
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    event.motion.x = x;
    event.motion.y = y;
    hands.handle(event, view, targets);
  }
  void finger(Uint32 type, SDL_FingerID id, float x, float y) {
    SDL_Event event{};
    event.type = type;
    event.tfinger.fingerId = id;
    event.tfinger.x = x;
    event.tfinger.y = y;
    hands.handle(event, view, targets);
  }
  void key(bool down, SDL_Keycode code, Uint16 modifiers = 0, bool isRepeated = false) {
    SDL_Event event{};
    event.key.repeat = isRepeated ? 1 : 0;
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.keysym.sym = code;
    event.key.keysym.mod = modifiers;
    hands.handle(event, view, targets);
  }
  static int pictureX(const InputReport& report, int pointer = 0) {
    return static_cast<int>(report.touch_event().pointer_data(pointer).x()) * 800 / TOUCH_SCREEN.width;
  }
};

TEST_F(HeadunitWindowInput, TheMouseTouchesThePicture) {
  button(true, 300, 100);
  InputReport report = heard();
  EXPECT_EQ(report.touch_event().action(), 0);
  EXPECT_EQ(pictureX(report), 200);
  motion(301, 100);
  report = heard();
  EXPECT_EQ(report.touch_event().action(), 2);
  EXPECT_EQ(pictureX(report), 201);
  button(false, 301, 100);
  EXPECT_EQ(heard().touch_event().action(), 1);
}

TEST_F(HeadunitWindowInput, NothingIsTouchedBesideThePicture) {
  button(true, 99, 100);
  motion(300, 100);
  button(false, 300, 100);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(HeadunitWindowInput, AFingerThatSlidesOffThePictureStaysAtItsEdge) {
  button(true, 300, 100);
  heard();
  motion(50, 100);
  EXPECT_EQ(pictureX(heard()), 0);
}

TEST_F(HeadunitWindowInput, OnlyTheLeftButtonTouchesAndOnlyWhileItIsDown) {
  button(true, 300, 100, SDL_BUTTON_RIGHT);
  motion(310, 100);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(HeadunitWindowInput, TwoFingersAreTwoPointers) {
  finger(SDL_FINGERDOWN, 5, 500.5F / 1300, 0.5F);
  EXPECT_EQ(pictureX(heard()), 400);
  finger(SDL_FINGERDOWN, 6, 600.5F / 1300, 0.5F);
  const InputReport report = heard();
  EXPECT_EQ(report.touch_event().action(), 5);
  EXPECT_EQ(report.touch_event().pointer_data_size(), 2);
  EXPECT_EQ(pictureX(report, 1), 500);
  finger(SDL_FINGERUP, 5, 0.4F, 0.5F);
  EXPECT_EQ(heard().touch_event().action(), 6);
}

TEST_F(HeadunitWindowInput, KeysHaveCodesAndModifiers) {
  key(true, SDLK_UP, KMOD_LSHIFT | KMOD_RCTRL);
  const InputReport report = heard();
  EXPECT_EQ(report.key_event().keys(0).keycode(), 19U);
  EXPECT_EQ(report.key_event().keys(0).metastate(), MODIFIER_SHIFT | MODIFIER_CONTROL);
  key(true, SDLK_UP);
  EXPECT_THAT(sent(), IsEmpty()) << "the keyboard repeats";
  key(false, SDLK_UP);
  EXPECT_FALSE(heard().key_event().keys(0).down());
  key(true, SDLK_PRINTSCREEN);
  EXPECT_THAT(sent(), IsEmpty()) << "a key without a code";
}

TEST_F(HeadunitWindowInput, EveryPlainKeyOfAKeyboardHasACodeOfItsOwn) {
  std::set<unsigned int> codes;
  int keys = 0;
  const auto note = [&](SDL_Keycode code) {
    if (code == SDLK_F7 || code == SDLK_F8 || code == SDLK_F9) return;  // the strip's
    const std::optional<unsigned int> found = keyCodeOf(code);
    EXPECT_TRUE(found) << SDL_GetKeyName(code);
    codes.insert(found.value_or(0));
    ++keys;
  };
  for (const char character : std::string("abcdefghijklmnopqrstuvwxyz0123456789 `-=[]\\;'/,.@+"))
    note(character);
  for (SDL_Keycode code = SDLK_F1; code <= SDLK_F12; ++code) note(code);
  for (const SDL_Keycode code : {SDLK_HOME, SDLK_END, SDLK_PAGEUP, SDLK_PAGEDOWN, SDLK_INSERT, SDLK_DELETE,
                                 SDLK_TAB, SDLK_RETURN, SDLK_BACKSPACE, SDLK_ESCAPE})
    note(code);
  EXPECT_EQ(static_cast<int>(codes.size()), keys);
}

TEST_F(HeadunitWindowInput, AKeyThatIsHeldBecomesALongPress) {
  key(true, SDLK_RETURN);
  heard();
  ASSERT_NE(hands.nextTick(), TimePoint::max());
  hands.tick(hands.nextTick());
  EXPECT_TRUE(heard().key_event().keys(0).longpress());
}

TEST_F(HeadunitWindowInput, TheWheelIsAKnob) {
  SDL_Event event{};
  event.type = SDL_MOUSEWHEEL;
  event.wheel.y = -3;
  hands.handle(event, view, targets);
  EXPECT_EQ(heard().relative_event().data(0).delta(), -3);
}

TEST_F(HeadunitWindowInput, NothingIsTouchedBeforeThereIsAPicture) {
  view.picture = PictureView();
  button(true, 300, 100);
  motion(310, 100);
  finger(SDL_FINGERDOWN, 5, 0.5F, 0.5F);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(HeadunitWindowInput, TheStripTouchesNoPicture) {
  targets = {{{0, 0, 300, 480}, {ClusterKey::enter}}};
  button(true, 1000, 0);
  motion(300, 100);
  button(false, 300, 100);
  finger(SDL_FINGERDOWN, 5, 0.99F, 0.5F);
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_THAT(strip.pressed, ElementsAre(ClusterKey::enter, ClusterKey::enter));
}

TEST_F(HeadunitWindowInput, AClickOnTheStripPressesTheKeysOfThatPlace) {
  targets = {{{10, 20, 30, 40}, {ClusterKey::down, ClusterKey::enter}}, {{10, 60, 30, 40}, {ClusterKey::up}}};
  button(true, 1009, 30);
  button(true, 1010, 19);
  button(true, 1040, 30);
  button(true, 1010, 20, SDL_BUTTON_RIGHT);
  EXPECT_THAT(strip.pressed, IsEmpty());
  button(true, 1039, 59);
  EXPECT_THAT(strip.pressed, ElementsAre(ClusterKey::down, ClusterKey::enter));
  button(true, 1010, 60);
  EXPECT_EQ(strip.pressed.back(), ClusterKey::up);
}

TEST_F(HeadunitWindowInput, ClicksCountInTheRenderersPixels) {
  targets = {{{100, 100, 10, 10}, {ClusterKey::back}}};
  view.scale = 2;
  button(true, 550, 50);
  EXPECT_THAT(strip.pressed, ElementsAre(ClusterKey::back));
}

TEST_F(HeadunitWindowInput, AClickAnswersNoQuestionThatCameAfterTheDrawing) {
  targets = {{{0, 0, 300, 480}, {ClusterKey::enter}, keyModeOf(cluster.view(), Clock::now())}};
  cluster.change([](ClusterView& now) { now.pairing = PairingView{"02:00:00:00:00:01", "", ""}; });
  button(true, 1010, 20);
  finger(SDL_FINGERDOWN, 5, 0.99F, 0.5F);
  EXPECT_THAT(strip.pressed, IsEmpty());
  targets[0].mode = keyModeOf(cluster.view(), Clock::now());
  button(true, 1010, 20);
  EXPECT_THAT(strip.pressed, ElementsAre(ClusterKey::enter)) << "now it has been drawn";
}

TEST_F(HeadunitWindowInput, AClickOnAnEntryAnswersNoCallThatComesOnItsWay) {
  cluster.change([](ClusterView& now) { now.browser.open = true; });
  targets = {{{0, 0, 300, 480},
              {ClusterKey::down, ClusterKey::down, ClusterKey::enter},
              keyModeOf(cluster.view(), Clock::now())}};
  int calls = 0;
  strip.heard = [&](ClusterKey key) {
    cluster.change([&](ClusterView& now) {
      now.browser.selected += key == ClusterKey::down ? 1 : 0;
      if (calls > 0) now.phone.calls = {{PhoneStatus_State_INCOMING, "1", "Ada", 0, nullptr}};
    });
  };
  button(true, 1010, 20);
  EXPECT_THAT(strip.pressed, ElementsAre(ClusterKey::down, ClusterKey::down, ClusterKey::enter));
  strip.pressed.clear();
  targets[0].mode = keyModeOf(cluster.view(), Clock::now());
  calls = 1;
  button(true, 1010, 20);
  EXPECT_THAT(strip.pressed, ElementsAre(ClusterKey::down)) << "then it rings";
}

TEST_F(HeadunitWindowInput, AKeyOfTheStripThatIsHeldIsPressedOnce) {
  key(true, SDLK_RETURN, KMOD_LALT);
  key(true, SDLK_RETURN, KMOD_LALT, true);
  EXPECT_THAT(strip.pressed, ElementsAre(ClusterKey::enter));
  EXPECT_THAT(sent(), IsEmpty()) << "nor is it the phone's";
}

TEST_F(HeadunitWindowInput, AltMakesArrowsTheStripsOwn) {
  for (const SDL_Keycode code : {SDLK_UP, SDLK_DOWN, SDLK_LEFT, SDLK_RIGHT, SDLK_RETURN, SDLK_BACKSPACE}) {
    key(true, code, KMOD_LALT);
    key(false, code, KMOD_LALT);
  }
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_THAT(strip.pressed, ElementsAre(ClusterKey::up, ClusterKey::down, ClusterKey::left,
                                         ClusterKey::right, ClusterKey::enter, ClusterKey::back));
}

TEST_F(HeadunitWindowInput, CallsBrowserAndRadioHaveKeysOfTheirOwn) {
  for (const SDL_Keycode code : {SDLK_F7, SDLK_F8, SDLK_F9}) key(true, code);
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_THAT(strip.pressed, ElementsAre(ClusterKey::call, ClusterKey::browser, ClusterKey::radio));
}

TEST_F(HeadunitWindowInput, AKeyOfThePhoneIsReleasedThoughAltIsDownByThen) {
  key(true, SDLK_UP);
  heard();
  key(false, SDLK_UP, KMOD_LALT);
  EXPECT_FALSE(heard().key_event().keys(0).down());
  EXPECT_THAT(strip.pressed, IsEmpty());
}

}  // namespace
}  // namespace headunit
