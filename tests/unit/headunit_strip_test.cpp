#include "headunit/strip/StripPainter.h"

#include <gmock/gmock.h>
#include <protos.pb.h>

#include <algorithm>
#include <future>
#include <string>

#include "headunit/Calls.h"
#include "headunit/strip/Cards.h"
#include "headunit/strip/Glyphs.h"
#include "headunit/strip/Theme.h"

namespace headunit {
namespace {

using strip::Colour;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const TimePoint NOW = TimePoint(std::chrono::seconds(100));
constexpr Size MIDDLE{384, 720};
const std::vector<Size> BESIDE_WINDOWS = {{240, 480}, {384, 720}, {576, 1080}};
constexpr std::uint32_t MAGENTA = 0xFF00FF;

std::uint32_t opaque(std::uint32_t rgb) { return 0xFF000000 | rgb; }

Image flatImage(std::uint32_t rgb, Size size = {8, 8}) {
  const auto count = static_cast<std::size_t>(size.width * size.height);
  return std::make_shared<const Bitmap>(Bitmap{size, std::vector<std::uint32_t>(count, opaque(rgb))});
}

std::uint32_t at(const Bitmap& bitmap, int x, int y) {
  return bitmap.pixels[static_cast<std::size_t>(y * bitmap.size.width + x)];
}

int countOf(const Bitmap& bitmap, std::uint32_t rgb) {
  return static_cast<int>(std::count(bitmap.pixels.begin(), bitmap.pixels.end(), opaque(rgb)));
}
int countOf(const Bitmap& bitmap, Colour colour) { return countOf(bitmap, colour.rgb); }

/// The smallest place that holds all pixels of a colour; empty if there is none.
Rect boundsOf(const Bitmap& bitmap, std::uint32_t rgb) {
  Point first{bitmap.size.width, bitmap.size.height};
  Point last{-1, -1};
  for (int y = 0; y < bitmap.size.height; ++y) {
    for (int x = 0; x < bitmap.size.width; ++x) {
      if (at(bitmap, x, y) != opaque(rgb)) continue;
      first = {std::min(first.x, x), std::min(first.y, y)};
      last = {std::max(last.x, x), std::max(last.y, y)};
    }
  }
  if (last.x < 0) return {};
  return {first.x, first.y, last.x - first.x + 1, last.y - first.y + 1};
}

Bitmap drawn(const ClusterView& view, Size size = MIDDLE) { return drawStrip(view, size, NOW).bitmap; }

ClusterView song(unsigned int position, unsigned int duration) {
  ClusterView view;
  view.media.known = true;
  view.media.positionSeconds = position;
  view.media.durationSeconds = duration;
  return view;
}

ClusterView list(unsigned int count, unsigned int selected) {
  ClusterView view;
  view.browser.open = true;
  view.browser.title = "All songs";
  view.browser.total = count;
  view.browser.selected = selected;
  for (unsigned int i = 0; i < count; ++i) {
    view.browser.entries.push_back({"/" + std::to_string(i), "Entry", "Somebody", nullptr});
  }
  return view;
}

NoticeView notice(milliseconds left) {
  NoticeView view;
  view.text = "Your parking ends";
  view.until = NOW + left;
  return view;
}

/// Everything at once, each text as given.
ClusterView everything(const std::string& text) {
  ClusterView view = list(5, 2);
  view.browser.title = text;
  for (BrowserView::Entry& entry : view.browser.entries) entry = {text, text, text, flatImage(0x112233)};
  view.turn = {true, text, 4, 2, -1, 0, nullptr, 350, 40};
  view.media = {true, true, text, text, text, text, text, 30, 60, true, true, true, flatImage(0x445566)};
  view.phone = {true, 3, {{2, text, text, 65, nullptr}, {4, text, text, 0, flatImage(0x778899)}}};
  view.tuner = {true, false, 98'300'000, text, text, true};
  return view;
}

// ---- What plays ----

struct HeadunitStripProgress : testing::TestWithParam<int> {};

TEST_P(HeadunitStripProgress, IsFilledAsFarAsTheSongHasPlayed) {
  for (const Size size : BESIDE_WINDOWS) {
    const Bitmap bitmap = drawn(song(static_cast<unsigned int>(GetParam()), 100), size);
    const Rect all = boundsOf(drawn(song(100, 100), size), strip::MUSIC.rgb);
    ASSERT_GT(all.width, size.width / 2);
    int filled = 0;
    for (int x = all.x; x < all.x + all.width; ++x)
      filled += at(bitmap, x, all.y + all.height / 2) == opaque(strip::MUSIC.rgb) ? 1 : 0;
    EXPECT_NEAR(filled, all.width * GetParam() / 100.0, 2.5);
  }
}

INSTANTIATE_TEST_SUITE_P(Percent, HeadunitStripProgress, testing::Values(0, 25, 50, 90, 100));

TEST(HeadunitStrip, NeverFillsTheProgressBeyondItsEnd) {
  EXPECT_EQ(drawn(song(4'000'000'000U, 100)).pixels.size(), drawn(song(100, 100)).pixels.size());
  EXPECT_EQ(countOf(drawn(song(1000, 100)), strip::MUSIC), countOf(drawn(song(100, 100)), strip::MUSIC));
  EXPECT_EQ(countOf(drawn(song(7, 0)), strip::MUSIC), 0) << "a song without an end";
}

TEST(HeadunitStrip, ShowsTheCoverInPlaceOfANote) {
  ClusterView view = song(1, 2);
  EXPECT_EQ(countOf(drawn(view), MAGENTA), 0);
  view.media.cover = flatImage(MAGENTA, {30, 10});
  const Rect cover = boundsOf(drawn(view), MAGENTA);
  EXPECT_GT(cover.width, MIDDLE.width / 2);
  EXPECT_NEAR(cover.width, cover.height, 2) << "it fills its square";
}

TEST(HeadunitStrip, LightsShuffleAndRepeat) {
  ClusterView view = song(0, 1);
  EXPECT_EQ(countOf(drawn(view), strip::MUSIC), 0);
  view.media.shuffle = true;
  const int shuffle = countOf(drawn(view), strip::MUSIC);
  EXPECT_GT(shuffle, 0);
  view.media.repeatOne = true;
  EXPECT_GT(countOf(drawn(view), strip::MUSIC), shuffle);
}

// ---- The next turn ----

TEST(HeadunitStrip, ShowsTheTurnsImageInPlaceOfAnArrow) {
  ClusterView view;
  view.turn.guiding = true;
  EXPECT_GT(countOf(drawn(view), strip::ROUTE), 100) << "the arrow";
  view.turn.image = flatImage(MAGENTA);
  EXPECT_EQ(countOf(drawn(view), strip::ROUTE), 0);
  EXPECT_GT(countOf(drawn(view), MAGENTA), 1000);
  view.turn.meters = 200;
  EXPECT_GT(countOf(drawn(view), strip::ROUTE), 0) << "the distance";
  view.turn.guiding = false;
  EXPECT_EQ(countOf(drawn(view), MAGENTA), 0);
}

TEST(HeadunitStrip, PointsTheArrowWhereTheTurnGoes) {
  const auto angle = [](int event, int side, int degrees) {
    TurnView turn;
    turn.event = event;
    turn.side = side;
    turn.angle = degrees;
    return strip::arrowAngle(turn);
  };
  EXPECT_EQ(angle(4, 2, -1), 90) << "right";
  EXPECT_EQ(angle(4, 1, -1), -90) << "left";
  EXPECT_EQ(angle(3, 1, -1), -35) << "slightly left";
  EXPECT_EQ(angle(14, 3, -1), 0) << "straight on";
  EXPECT_EQ(angle(4, 2, 70), 70) << "as the phone says";
  EXPECT_EQ(angle(4, 1, 120), -120);
  EXPECT_EQ(angle(4, 1, 270), 270) << "counted clockwise already";
}

TEST(HeadunitStrip, DrawsEveryKindOfTurnInItsPlace) {
  for (int event = -1; event <= 20; ++event) {
    for (const int side : {0, 1, 2, 3}) {
      ClusterView view;
      view.turn.guiding = true;
      view.turn.event = event;
      view.turn.side = side;
      const Rect arrow = boundsOf(drawn(view), strip::ROUTE.rgb);
      EXPECT_GT(arrow.height, 10) << event;
      EXPECT_LT(arrow.x + arrow.width, MIDDLE.width / 3) << event;
      EXPECT_LT(arrow.y + arrow.height, MIDDLE.height / 3) << event;
    }
  }
}

// ---- Telephone and radio ----

TEST(HeadunitStrip, HasABarForEachStepOfTheSignal) {
  ClusterView view;
  view.phone.known = true;
  const auto bars = [&view](unsigned int strength) {
    view.phone.signal = strength;
    return countOf(drawn(view), strip::INK);
  };
  EXPECT_EQ(bars(0), 0);
  for (unsigned int i = 1; i <= 4; ++i) EXPECT_GT(bars(i), bars(i - 1)) << i;
  EXPECT_EQ(bars(5), bars(4));
  EXPECT_EQ(bars(4'000'000'000U), bars(4));
}

TEST(HeadunitStrip, ShowsAsManyCallsAsFitThoseFirstThatTheKeysConcern) {
  ClusterView view;
  view.phone.known = true;
  view.phone.calls = {{PhoneStatus_State_INCOMING, "1", "First", 0, flatImage(0x0000FF)},
                      {PhoneStatus_State_ON_HOLD, "2", "Second", 0, flatImage(0xFF0000)},
                      {PhoneStatus_State_IN_CALL, "3", "Third", 0, flatImage(0x00FF00)},
                      {PhoneStatus_State_INACTIVE, "4", "Fourth", 0, flatImage(0xFFFF00)}};
  const Bitmap bitmap = drawn(view);
  EXPECT_EQ(countOf(bitmap, 0xFF0000), 0);
  EXPECT_EQ(countOf(bitmap, 0xFFFF00), 0);
  EXPECT_GT(boundsOf(bitmap, 0x00FF00).y, boundsOf(bitmap, 0x0000FF).y);
  EXPECT_GT(boundsOf(bitmap, 0x0000FF).height, 0);
  view.browser.open = true;
  EXPECT_EQ(countOf(drawn(view), 0x00FF00), 0) << "there is room for one";
  EXPECT_GT(countOf(drawn(view), 0x0000FF), 0);
}

TEST(HeadunitStrip, CountsNoCallThatIsOver) {
  ClusterView view;
  view.phone.calls = {{PhoneStatus_State_INACTIVE, "1", "Ada", 0, nullptr},
                      {PhoneStatus_State_ON_HOLD, "2", "Eve", 0, nullptr}};
  EXPECT_EQ(callsIn(view.phone.calls), 1U);
}

TEST(HeadunitStrip, MovesTheNeedleAlongTheBand) {
  ClusterView view;
  EXPECT_EQ(countOf(drawn(view), strip::RADIO), 0) << "the radio is off";
  view.tuner.on = true;
  const auto needle = [&view](int hertz) {
    view.tuner.frequencyHz = hertz;
    const Bitmap bitmap = drawn(view);
    const Rect all = boundsOf(bitmap, strip::RADIO.rgb);
    int last = 0;  // in the lowest row there is nothing but the needle
    for (int x = 0; x < bitmap.size.width; ++x)
      if (at(bitmap, x, all.y + all.height - 4) == opaque(strip::RADIO.rgb)) last = x;
    return last;
  };
  EXPECT_LT(needle(87'500'000), needle(95'000'000));
  EXPECT_LT(needle(95'000'000), needle(108'000'000));
  EXPECT_EQ(needle(108'000'000), needle(2'000'000'000));
  EXPECT_EQ(needle(87'500'000), needle(-5));
}

// ---- The list ----

TEST(HeadunitStrip, HighlightsTheSelectedEntry) {
  std::vector<Rect> rows;
  for (unsigned int i = 0; i < 3; ++i) rows.push_back(boundsOf(drawn(list(3, i)), strip::SELECTION.rgb));
  EXPECT_GT(rows[0].width, MIDDLE.width * 3 / 4);
  EXPECT_GE(rows[1].y, rows[0].y + rows[0].height);
  EXPECT_GE(rows[2].y, rows[1].y + rows[1].height);
  EXPECT_NEAR(rows[2].y - rows[1].y, rows[1].y - rows[0].y, 1);
}

TEST(HeadunitStrip, KeepsTheSelectedEntryInSight) {
  for (const unsigned int selected : {0U, 1U, 60U, 118U, 119U, 4000U}) {
    EXPECT_GT(boundsOf(drawn(list(120, selected)), strip::SELECTION.rgb).height, 20) << selected;
  }
}

TEST(HeadunitStrip, SaysNothingOfAnEntryWhereThereIsNone) {
  EXPECT_EQ(countOf(drawn(list(0, 0)), strip::SELECTION), 0);
  EXPECT_THAT(drawStrip(list(0, 7), MIDDLE, NOW).targets, IsEmpty());
}

TEST(HeadunitStrip, OpensTheEntryThatIsClicked) {
  const StripDrawing drawing = drawStrip(list(3, 1), MIDDLE, NOW);
  ASSERT_THAT(drawing.targets, SizeIs(3));
  EXPECT_THAT(drawing.targets[0].keys, ElementsAre(ClusterKey::up, ClusterKey::enter));
  EXPECT_THAT(drawing.targets[1].keys, ElementsAre(ClusterKey::enter));
  EXPECT_THAT(drawing.targets[2].keys, ElementsAre(ClusterKey::down, ClusterKey::enter));
  const Rect selection = boundsOf(drawing.bitmap, strip::SELECTION.rgb);
  const Rect place = drawing.targets[1].place;
  EXPECT_TRUE(contains(place, {selection.x, selection.y}));
  EXPECT_TRUE(contains(place, {selection.x + selection.width - 1, selection.y + selection.height - 1}));
}

TEST(HeadunitStrip, TellsWithEachPlaceWhatItsKeysMeant) {
  ClusterView view = list(3, 1);
  view.browser.path = "/Library";
  for (const StripTarget& target : drawStrip(view, MIDDLE, NOW).targets)
    EXPECT_TRUE(target.mode == keyModeOf(view, NOW));
  const KeyMode drawn = keyModeOf(view, NOW);
  const auto differs = [&](const std::function<void(ClusterView&)>& change) {
    ClusterView other = view;
    change(other);
    return !(keyModeOf(other, NOW) == drawn);
  };
  EXPECT_FALSE(differs([](ClusterView& other) { other.media.positionSeconds = 5; }));
  EXPECT_FALSE(differs([](ClusterView& other) { other.notice = notice(milliseconds(0)); })) << "it is over";
  EXPECT_TRUE(differs([](ClusterView& other) { other.notice = notice(milliseconds(1)); }));
  EXPECT_TRUE(differs([](ClusterView& other) { other.pairing = PairingView(); }));
  EXPECT_TRUE(differs([](ClusterView& other) { other.browser.open = false; }));
  EXPECT_TRUE(differs([](ClusterView& other) { other.browser.path = "/"; }));
  EXPECT_TRUE(differs([](ClusterView& other) { other.browser.start = 10; }));
  EXPECT_TRUE(differs([](ClusterView& other) { other.browser.selected = 2; }));
  const auto rings = [](ClusterView& other) { other.phone.calls = {{4, "1", "Ada", 0, nullptr}}; };
  EXPECT_TRUE(differs(rings));
  view.pairing = PairingView();
  ClusterView ringing = view;
  rings(ringing);
  EXPECT_TRUE(keyModeOf(ringing, NOW) == keyModeOf(view, NOW)) << "the question takes the keys all the same";
}

TEST(HeadunitStrip, TakesNoClickWhileACallRings) {
  ClusterView view = list(3, 1);
  view.notice = notice(milliseconds(1));
  view.phone.calls = {{2, "1", "Ada", 0, nullptr}};
  EXPECT_THAT(drawStrip(view, MIDDLE, NOW).targets, SizeIs(4));
  view.phone.calls.push_back({4, "2", "Eve", 0, nullptr});
  EXPECT_THAT(drawStrip(view, MIDDLE, NOW).targets, IsEmpty());
}

// ---- What lies over the rest ----

TEST(HeadunitStrip, ShowsANoticeUntilItsTimeHasCome) {
  ClusterView view;
  EXPECT_EQ(countOf(drawn(view), strip::TOAST), 0);
  view.notice = notice(milliseconds(1));
  const Rect toast = boundsOf(drawn(view), strip::TOAST.rgb);
  EXPECT_GT(toast.width, MIDDLE.width * 3 / 4);
  EXPECT_GT(toast.y, MIDDLE.height * 3 / 4);
  const std::vector<StripTarget> targets = drawStrip(view, MIDDLE, NOW).targets;
  ASSERT_THAT(targets, SizeIs(1));
  EXPECT_THAT(targets[0].keys, ElementsAre(ClusterKey::back)) << "a click puts it away";
  EXPECT_TRUE(contains(targets[0].place, {toast.x + toast.width / 2, toast.y + toast.height / 2}));
  view.notice = notice(milliseconds(0));
  EXPECT_EQ(countOf(drawn(view), strip::TOAST), 0);
}

TEST(HeadunitStrip, AsksOverEverythingElse) {
  ClusterView view = everything("Words");
  view.notice = notice(milliseconds(1));
  const Bitmap before = drawn(view);
  view.pairing = PairingView{"02:00:00:00:00:01", "Compare the number", "123456"};
  const StripDrawing drawing = drawStrip(view, MIDDLE, NOW);
  for (const Colour below : {strip::CARD, strip::TOAST, strip::SELECTION, strip::MUSIC, strip::ROUTE}) {
    ASSERT_GT(countOf(before, below), 100);
    EXPECT_LT(countOf(drawing.bitmap, below), 5);  // the edge of a letter may happen to have the colour
  }
  const Rect dialogue = boundsOf(drawing.bitmap, strip::DIALOGUE.rgb);
  const Rect words = boundsOf(drawing.bitmap, strip::INK.rgb);
  EXPECT_GT(words.width, 0);
  EXPECT_TRUE(contains(dialogue, {words.x, words.y})) << "nothing else is as bright";
  EXPECT_TRUE(contains(dialogue, {words.x + words.width - 1, words.y + words.height - 1}));
}

TEST(HeadunitStrip, AnswersTheQuestionByAClick) {
  ClusterView view = list(3, 0);
  view.pairing = PairingView{"02:00:00:00:00:01", "", ""};
  const StripDrawing drawing = drawStrip(view, MIDDLE, NOW);
  ASSERT_THAT(drawing.targets, SizeIs(2)) << "the list is out of reach";
  EXPECT_THAT(drawing.targets[0].keys, ElementsAre(ClusterKey::back));
  EXPECT_THAT(drawing.targets[1].keys, ElementsAre(ClusterKey::enter));
  const Rect accept = boundsOf(drawing.bitmap, strip::ACCEPT.rgb);
  EXPECT_NEAR(drawing.targets[1].place.x, accept.x, 1);
  EXPECT_NEAR(drawing.targets[1].place.height, accept.height, 2);
}

/// Whether a row of the dialogue, from under a button to its own foot, has words.
bool hasWordsUnder(const Rect& button, const Bitmap& bitmap) {
  const Rect dialogue = boundsOf(bitmap, strip::DIALOGUE.rgb);
  for (int y = button.y + button.height + 2; y < dialogue.y + dialogue.height; ++y) {
    for (int x = button.x + button.width / 4; x < button.x + button.width * 3 / 4; ++x) {
      if (at(bitmap, x, y) != opaque(strip::DIALOGUE.rgb)) return true;
    }
  }
  return false;
}

TEST(HeadunitStrip, NamesTheKeyOfEachAnswerUnderItsButton) {
  ClusterView view;
  for (const char* const passkey : {"", "123456"}) {
    view.pairing = PairingView{"", "", passkey};
    for (const Size size : BESIDE_WINDOWS) {
      const StripDrawing drawing = drawStrip(view, size, NOW);
      for (const StripTarget& button : drawing.targets)
        EXPECT_TRUE(hasWordsUnder(button.place, drawing.bitmap)) << size.width << passkey << button.place.x;
    }
  }
}

// ---- Any size, any text ----

TEST(HeadunitStrip, FillsAnySizeWithoutAHole) {
  ClusterView view = everything("Words");
  view.notice = notice(milliseconds(1));
  for (const Size size : {Size{1, 1}, {3, 900}, {240, 480}, {384, 720}, {576, 1080}, {2000, 40}, {50, 50}}) {
    for (const bool asks : {false, true}) {
      if (asks) view.pairing = PairingView{"02:00:00:00:00:01", "Compare the number", "123456"};
      const Bitmap bitmap = drawn(view, size);
      ASSERT_EQ(bitmap.size.width, size.width);
      ASSERT_EQ(bitmap.pixels.size(), static_cast<std::size_t>(size.width * size.height));
      for (const std::uint32_t pixel : bitmap.pixels) ASSERT_EQ(pixel & 0xFF000000, 0xFF000000);
    }
    view.pairing.reset();
  }
}

TEST(HeadunitStrip, DrawsNothingWhereThereIsNoRoom) {
  for (const Size size : {Size{0, 0}, {0, 480}, {240, 0}, {-3, 10}, {1'000'000, 1'000'000}})
    EXPECT_THAT(drawn({}, size).pixels, IsEmpty());
}

struct HeadunitStripText : testing::TestWithParam<std::string> {};

TEST_P(HeadunitStripText, IsDrawnInsideOfItsCard) {
  const strip::Box box{20, 30, 260, 110};
  Bitmap bitmap{{300, 170}, std::vector<std::uint32_t>(300 * 170, opaque(MAGENTA))};
  const ClusterView view = everything(GetParam());
  {
    strip::Targets targets;
    strip::Brush brush(&bitmap, 1);
    strip::drawTurnCard(&brush, box, view.turn);
    strip::drawCallsCard(&brush, box, view.phone.calls);
    strip::drawBrowserCard(&brush, box, view.browser, &targets);
    strip::drawTunerCard(&brush, box, view.tuner);
    for (const double height : {60.0, 110.0, 120.0}) {
      strip::drawMediaCard(&brush, {box.x, box.y, box.width, std::min(height, box.height)}, view.media);
    }
  }
  for (int y = 0; y < 170; ++y) {
    for (int x = 0; x < 300; ++x) {
      const bool isInside = x >= 20 && x < 280 && y >= 30 && y < 140;
      ASSERT_TRUE(isInside || at(bitmap, x, y) == opaque(MAGENTA)) << x << ", " << y;
    }
  }
  EXPECT_NE(at(bitmap, 150, 80), opaque(MAGENTA));
}

TEST_P(HeadunitStripText, LeavesTheCardsApart) {
  for (const Size size : BESIDE_WINDOWS) {
    const Bitmap bitmap = drawn(everything(GetParam()), size);
    // Down the cards' left padding: turn, calls, list, what plays, radio.
    const int x = size.width * 17 / 300;
    int cards = 0;
    for (int y = 1; y < size.height; ++y) {
      const bool begins =
          at(bitmap, x, y) == opaque(strip::CARD.rgb) && at(bitmap, x, y - 1) != opaque(strip::CARD.rgb);
      cards += begins ? 1 : 0;
    }
    EXPECT_EQ(cards, 5) << size.width;
  }
}

TEST_P(HeadunitStripText, FitsNoticesAndQuestions) {
  ClusterView view;
  view.notice = notice(milliseconds(1));
  view.notice->text = GetParam();
  const Rect toast = boundsOf(drawn(view), strip::TOAST.rgb);
  EXPECT_LT(toast.height, 100);
  view.pairing = PairingView{GetParam(), GetParam(), GetParam()};
  EXPECT_LT(boundsOf(drawn(view), strip::DIALOGUE.rgb).height, MIDDLE.height / 2);
}

std::string piledMarks() {
  std::string text = "Z";
  for (int i = 0; i < 500; ++i) text += "\u0300\u0323";
  return text;
}

INSTANTIATE_TEST_SUITE_P(Odd, HeadunitStripText,
                         testing::Values("Words", "", std::string(10'000, 'W'), std::string(10'000, ' '),
                                         "\xFF\xFE\xC3(", std::string("a\0b", 3), "one\ntwo\r\nthree\ttabs",
                                         "\u05E9\u05DC\u05D5\u05DD \u0645\u0631\u062D\u0628\u0627 mixed",
                                         "\u202E\u2066\u2067 turned round", piledMarks(),
                                         "\xF0\x9F\x98\x80 \xE6\xBC\xA2", "\xED\xA0\x80 half of a pair"));

TEST(HeadunitStrip, DrawsNothingOfAnImageThatLacksPixels) {
  ClusterView view = song(1, 2);
  view.media.cover = std::make_shared<const Bitmap>(Bitmap{{100, 100}, {opaque(MAGENTA)}});
  EXPECT_EQ(countOf(drawn(view), MAGENTA), 0);
  view.media.cover = std::make_shared<const Bitmap>();
  EXPECT_FALSE(drawn(view).pixels.empty());
}

TEST(HeadunitStrip, LooksTheSameOnEveryThread) {
  const ClusterView view = everything("Words");
  const auto draw = [&view] { return drawn(view).pixels; };
  auto other = std::async(std::launch::async, draw);
  const std::vector<std::uint32_t> pixels = draw();
  EXPECT_EQ(other.get(), pixels);
}

}  // namespace
}  // namespace headunit
