#include <SDL.h>
#include <gmock/gmock.h>

#include "ServiceTest.h"
#include "headunit/media/KeyMap.h"
#include "headunit/media/WindowInput.h"

namespace headunit {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

/// A user at a window of 1000x480, in which a picture of 800x480 stands 100 pixels from the left.
struct HeadunitWindowInput : test::ServiceTest {
  InputSource input{SERVICE, link.router()};
  Controls controls;
  ControlTotals totals;
  WindowInput hands{&controls};
  PictureView view{{800, 480}, {0, 0}, {1000, 480}};

  HeadunitWindowInput() {
    input.setSupportedKeycodes(allKeyCodes());
    open(&input);
    KeyBindingRequest request;
    for (const int code : allKeyCodes()) request.add_keycodes(code);
    sends(test::message(MESSAGE_KEY_BINDING_REQUEST, request));
    sent();
    controls.attach(&input, &totals);
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
    hands.handle(event, view, 1);
  }
  void motion(int x, int y) {
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    event.motion.x = x;
    event.motion.y = y;
    hands.handle(event, view, 1);
  }
  void finger(Uint32 type, SDL_FingerID id, float x, float y) {
    SDL_Event event{};
    event.type = type;
    event.tfinger.fingerId = id;
    event.tfinger.x = x;
    event.tfinger.y = y;
    hands.handle(event, view, 1);
  }
  void key(bool down, SDL_Keycode code, Uint16 modifiers = 0) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.keysym.sym = code;
    event.key.keysym.mod = modifiers;
    hands.handle(event, view, 1);
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
  finger(SDL_FINGERDOWN, 5, 0.5F, 0.5F);
  EXPECT_EQ(pictureX(heard()), 400);
  finger(SDL_FINGERDOWN, 6, 0.6F, 0.5F);
  const InputReport report = heard();
  EXPECT_EQ(report.touch_event().action(), 5);
  EXPECT_EQ(report.touch_event().pointer_data_size(), 2);
  EXPECT_EQ(pictureX(report, 1), 500);
  finger(SDL_FINGERUP, 5, 0.5F, 0.5F);
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
  hands.handle(event, view, 1);
  EXPECT_EQ(heard().relative_event().data(0).delta(), -3);
}

TEST_F(HeadunitWindowInput, NothingIsTouchedBeforeThereIsAPicture) {
  view = PictureView();
  button(true, 300, 100);
  finger(SDL_FINGERDOWN, 5, 0.5F, 0.5F);
  EXPECT_THAT(sent(), IsEmpty());
}

}  // namespace
}  // namespace headunit
