#include "phone/MediaClock.h"

#include <gmock/gmock.h>

#include "phone/MediaStream.h"
#include "phone_head_unit.h"

namespace test {
namespace {

using phone::MediaFeed;
using phone::MediaStream;
using phone::MediaUnit;
using phone::Micros;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// Units 100 ms apart from 0 on, which may tell when they are due before they are made.
struct TickingFeed : MediaFeed {
  bool foretells = false;
  int given = 0;
  std::vector<Micros> sent;
  phone::Bytes codecConfig() override { return {}; }
  Pull next(MediaUnit* unit) override {
    unit->timestamp = unit->due = Micros{100'000} * given++;
    unit->data = {static_cast<std::uint8_t>(given)};
    return Pull::unit;
  }
  std::optional<Micros> nextDue() const override {
    return foretells ? std::optional<Micros>(Micros{100'000} * given) : std::nullopt;
  }
  void onSent(const MediaUnit& unit) override { sent.push_back(unit.due); }
};

struct PhoneMediaClock : testing::Test {
  phone::PhoneLink link{linkOptions()};
  HandMadeHeadUnit headUnit{&link};
  phone::Timers timers;
  phone::MediaClock clock;
  TickingFeed* feeds[3] = {};
  std::vector<std::unique_ptr<MediaStream>> streams;

  PhoneMediaClock() { headUnit.bringsUp(); }

  /// Starts the stream on channel 1 or 2 now.
  void starts(std::size_t channel, bool foretells = false, std::uint32_t maxUnacked = 100) {
    auto feed = std::make_unique<TickingFeed>();
    feed->foretells = foretells;
    feeds[channel] = feed.get();
    auto held = std::make_shared<std::unique_ptr<MediaFeed>>(std::move(feed));
    phone::StreamOptions options;
    options.clock = &clock;
    options.answerLimit = 60'000'000;
    streams.push_back(std::make_unique<MediaStream>(
        &link, &timers, options, [held](const std::vector<std::uint32_t>&, std::uint32_t*, phone::LinkEnd*) {
          return std::move(*held);
        }));
    streams.back()->start(static_cast<std::uint8_t>(channel), 4);
    headUnit.answersOpen(static_cast<int>(channel));
    Config config;
    config.set_status(Config_Status_STATUS_READY);
    config.set_max_unacked(maxUnacked);
    headUnit.sends(static_cast<int>(channel), MESSAGE_CONFIG, config);
    headUnit.hears();
  }
  /// Winds the clock in steps of a millisecond, as an event loop would.
  void passes(Micros duration) {
    for (const Micros end = timers.now() + duration; timers.now() < end;) timers.advance(timers.now() + 1000);
  }
  /// The times in the media data that went out on a channel since the last look.
  std::vector<std::uint64_t> timesOn(int channel) {
    std::vector<std::uint64_t> times;
    for (const WireFrame& frame : headUnit.hears()) {
      if (frame.channel != channel) continue;
      times.push_back(phone::readBigEndian<std::uint64_t>(frame.payload.data() + 2));
    }
    return times;
  }
};

TEST_F(PhoneMediaClock, StreamsThatBeginTogetherStayTogether) {
  starts(1);
  passes(30'000);
  starts(2);
  EXPECT_THAT(feeds[2]->sent, ElementsAre(0)) << "30 ms late, and sent at once";
  passes(69'000);
  EXPECT_THAT(feeds[2]->sent, SizeIs(1));
  passes(1'000);
  EXPECT_THAT(feeds[1]->sent, SizeIs(2));
  EXPECT_THAT(feeds[2]->sent, SizeIs(2)) << "100 ms after the first stream began";
}

TEST_F(PhoneMediaClock, AStreamThatBeginsLateJoinsTheOthersWithoutHoldingThemUp) {
  starts(1);
  passes(2'000'000);
  EXPECT_THAT(feeds[1]->sent, SizeIs(21));
  starts(2);
  passes(100'000);
  EXPECT_THAT(feeds[1]->sent, SizeIs(22));
  EXPECT_THAT(timesOn(2), ElementsAre(2'100'000)) << "its time is the common clock's";
}

TEST_F(PhoneMediaClock, AStreamThatFallsBehindHoldsUpTheOthers) {
  starts(1);
  starts(2, false, 1);
  passes(1'000'000);
  EXPECT_THAT(feeds[1]->sent, SizeIs(11));
  EXPECT_THAT(feeds[2]->sent, SizeIs(1)) << "nothing is acknowledged";
  headUnit.sends(2, bytes("80 04 08 01 10 01"));
  EXPECT_THAT(feeds[2]->sent, SizeIs(2));
  passes(999'000);
  EXPECT_THAT(feeds[1]->sent, SizeIs(11)) << "the clock went back to 100 ms";
  passes(1'000);
  EXPECT_THAT(feeds[1]->sent, SizeIs(12));
}

TEST_F(PhoneMediaClock, ALiveUnitIsMadeWhenItIsDueAndNotBefore) {
  starts(1, true);
  passes(99'000);
  EXPECT_EQ(feeds[1]->given, 1);
  passes(1'000);
  EXPECT_EQ(feeds[1]->given, 2);
  EXPECT_THAT(feeds[1]->sent, ElementsAre(0, 100'000));
}

TEST_F(PhoneMediaClock, AnyOtherUnitIsReadyBeforeItIsDue) {
  starts(1);
  EXPECT_EQ(feeds[1]->given, 2);
  EXPECT_THAT(feeds[1]->sent, ElementsAre(0));
}

TEST_F(PhoneMediaClock, AFollowerGoesAsFarAsItIsTold) {
  starts(1);
  headUnit.hears();
  streams[0]->follow(250'000);
  EXPECT_THAT(timesOn(1), ElementsAre(100'000, 200'000));
  passes(1'000'000);
  EXPECT_THAT(timesOn(1), IsEmpty());
}

}  // namespace
}  // namespace test
