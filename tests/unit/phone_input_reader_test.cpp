#include "phone/InputReader.h"

#include <gmock/gmock.h>

#include "phone_head_unit.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int channel = 2;

struct FakePicture : phone::TestPictureSource {
  std::uint32_t sequence = 0;
  std::vector<phone::TouchMark> touches;
  std::vector<std::uint8_t> codecConfig() override { return {}; }
  bool next(phone::AccessUnit*) override { return false; }
  int width() const override { return 800; }
  int height() const override { return 480; }
  std::int64_t nextDueUs() const override { return 0; }
  std::uint32_t shownTouchSequence() const override { return 0; }
  std::uint32_t setTouches(std::vector<phone::TouchMark> marks) override {
    touches = std::move(marks);
    return ++sequence;
  }
};

struct ReportCollector : phone::CarListener {
  std::vector<InputReport> reports;
  void onInputReport(const InputReport& report) override { reports.push_back(report); }
};

std::string words(const std::vector<phone::TouchMark>& touches) {
  std::string text;
  for (const phone::TouchMark& touch : touches) {
    text += (touch.lifted ? "(" : "[") + std::to_string(touch.pointerId) + " at " + std::to_string(touch.x) +
            "," + std::to_string(touch.y) + "]";
  }
  return text;
}

struct PhoneInputReader : testing::Test {
  phone::PhoneLink link{linkOptions()};
  HandMadeHeadUnit headUnit{&link};
  phone::Timers timers;
  phone::TouchScreen screen{&timers};
  ReportCollector listener;
  phone::InputReader input{&link, &screen, &listener};
  FakePicture picture;
  Service service;

  PhoneInputReader() {
    headUnit.bringsUp();
    service.set_id(8);
    for (const int keycode : {3, 4, 65536})
      service.mutable_input_source_service()->add_keycodes_supported(keycode);
    service.mutable_input_source_service()->add_touchscreen()->set_width(1600);
    service.mutable_input_source_service()->mutable_touchscreen(0)->set_height(960);
  }
  void opens() {
    input.open(channel, service);
    headUnit.hears();
    headUnit.answersOpen(channel);
  }
  /// Touch event bytes: pointers 0 at (100, 50), and if there are `two`, 1 at (1599, 959); the action.
  void touches(bool two, int index, int action) {
    Bytes event = bytes("0A 06 08 64 10 32 18 00");
    if (two) append(event, bytes("0A 08 08 BF 0C 10 BF 07 18 01"));
    append(event, {0x10, static_cast<std::uint8_t>(index), 0x18, static_cast<std::uint8_t>(action)});
    Bytes report = bytes("80 01 08 07 1A");
    report.push_back(static_cast<std::uint8_t>(event.size()));
    append(report, event);
    headUnit.sends(channel, report);
  }
  static void append(Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); }
};

TEST_F(PhoneInputReader, BindsEveryKeyCodeThatIsOffered) {
  opens();
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 02 0A 05 03 04 80 80 04")));
  EXPECT_EQ(input.stats().bound, 0U);
  headUnit.sends(channel, bytes("80 03 08 00"));
  EXPECT_EQ(input.stats().bound, 3U);
}

TEST_F(PhoneInputReader, ARefusedBindingBindsNothing) {
  opens();
  headUnit.sends(channel, bytes("80 03 08 EE FF FF FF FF FF FF FF FF 01"));  // -18
  EXPECT_EQ(input.stats().bound, 0U);
  headUnit.sends(channel, bytes("80 03"));
  EXPECT_EQ(input.stats().damaged, 1U);
}

TEST_F(PhoneInputReader, HandsOnAndCountsEveryKindOfReport) {
  opens();
  headUnit.sends(channel, bytes("80 01 08 01 22 0A 0A 08 08 03 10 01 18 00 20 00"));  // key 3 down
  headUnit.sends(channel, bytes("80 01 08 02 2A 06 0A 04 08 04 10 09"));              // absolute 4: 9
  headUnit.sends(channel, bytes("80 01 08 03 32 08 0A 06 08 80 80 04 10 01"));        // relative 65536: 1
  headUnit.sends(channel, bytes("80 01 08 04 3A 02 18 01"));                          // touch pad
  ASSERT_THAT(listener.reports, SizeIs(4));
  EXPECT_EQ(listener.reports[0].key_event().keys(0).keycode(), 3U);
  EXPECT_EQ(listener.reports[2].relative_event().data(0).keycode(), 65536U);
  EXPECT_EQ(input.stats().reports, 4U);
  EXPECT_EQ(input.stats().keys, 1U);
  EXPECT_EQ(input.stats().absolute, 1U);
  EXPECT_EQ(input.stats().relative, 1U);
  EXPECT_EQ(input.stats().touchpad, 1U);
  EXPECT_EQ(screen.stats().received, 0U) << "a touch pad is no screen";
}

TEST_F(PhoneInputReader, ADamagedReportReachesNobody) {
  opens();
  headUnit.sends(channel, bytes("80 01 1A 02 18 00"));  // no timestamp
  EXPECT_THAT(listener.reports, IsEmpty());
  EXPECT_EQ(input.stats().damaged, 1U);
}

TEST_F(PhoneInputReader, MarksEachFingerWhereItIsInThePicture) {
  opens();
  screen.setPicture(&picture);
  touches(false, 0, 0);
  EXPECT_EQ(words(picture.touches), "[0 at 50,25]");
  touches(true, 1, 5);
  EXPECT_EQ(words(picture.touches), "[0 at 50,25][1 at 799,479]");
  EXPECT_EQ(picture.sequence, 2U);
}

TEST_F(PhoneInputReader, TellsApartTheFingerThatLeaves) {
  opens();
  screen.setPicture(&picture);
  touches(true, 1, 2);
  touches(true, 0, 6);
  EXPECT_EQ(words(picture.touches), "(0 at 50,25][1 at 799,479]");
  touches(false, 0, 1);
  EXPECT_EQ(words(picture.touches), "(0 at 50,25]");
  EXPECT_EQ(picture.sequence, 3U);
}

TEST_F(PhoneInputReader, CoordinatesAreThePicturesWhereNoScreenIsListed) {
  service.mutable_input_source_service()->clear_touchscreen();
  opens();
  screen.setPicture(&picture);
  touches(false, 0, 0);
  EXPECT_EQ(words(picture.touches), "[0 at 100,50]");
}

TEST_F(PhoneInputReader, APictureThatComesLateCountsTheTouchesBeforeIt) {
  opens();
  touches(false, 0, 0);
  touches(true, 1, 5);
  screen.setPicture(&picture);
  EXPECT_EQ(picture.sequence, 2U);
  EXPECT_EQ(words(picture.touches), "[0 at 50,25][1 at 799,479]");
  touches(false, 0, 2);
  EXPECT_EQ(picture.sequence, 3U);
}

TEST_F(PhoneInputReader, MeasuresTouchesUntilThePictureThatShowsThem) {
  opens();
  timers.advance(1000);
  touches(false, 0, 0);
  timers.advance(1400);
  touches(false, 0, 2);
  screen.onPictureSent(0);
  EXPECT_THAT(screen.stats().latencies, IsEmpty());
  timers.advance(2000);
  screen.onPictureSent(1);
  EXPECT_THAT(screen.stats().latencies, ElementsAre(1000));
  timers.advance(2500);
  screen.onPictureSent(2);
  screen.onPictureSent(2);
  EXPECT_THAT(screen.stats().latencies, ElementsAre(1000, 1100));
  EXPECT_EQ(screen.stats().shown, 2U);
}

}  // namespace
}  // namespace test
