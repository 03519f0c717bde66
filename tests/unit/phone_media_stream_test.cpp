#include "phone/MediaStream.h"

#include <gmock/gmock.h>

#include "phone_head_unit.h"

namespace test {
namespace {

using phone::MediaFeed;
using phone::MediaStream;
using phone::MediaUnit;
using phone::Micros;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using State = MediaStream::State;

constexpr int channel = 4;
constexpr int service = 2;

/// Units of one byte each, numbered from 1, `interval` apart.
struct NumberFeed : MediaFeed {
  int count = 3;
  Micros interval = 100;
  bool pauses = false;
  Bytes config = bytes("C0 C1");
  int given = 0;
  std::string breaks;

  phone::Bytes codecConfig() override { return config; }
  std::string problem() const override { return breaks; }
  Pull next(MediaUnit* unit) override {
    if (pauses) return Pull::later;
    if (given == count) return Pull::end;
    unit->due = 5000 + given * interval;
    unit->timestamp = unit->due + 7;
    unit->data = {static_cast<std::uint8_t>(++given)};
    return Pull::unit;
  }
};

struct PhoneMediaStream : testing::Test {
  phone::PhoneLink link{linkOptions()};
  HandMadeHeadUnit headUnit{&link};
  phone::Timers timers;
  phone::StreamOptions options;
  std::optional<phone::LinkEnd> done;
  std::vector<std::uint32_t> allowed;
  std::unique_ptr<NumberFeed> ready = std::make_unique<NumberFeed>();
  NumberFeed* feed = ready.get();
  std::unique_ptr<MediaStream> stream_;

  PhoneMediaStream() {
    headUnit.bringsUp();
    options.paced = false;
    options.sessionId = 9;
  }

  MediaStream& stream() {
    if (stream_) return *stream_;
    auto open = [this](const std::vector<std::uint32_t>& indices, std::uint32_t* index,
                       phone::LinkEnd* problem) {
      allowed = indices;
      *index = 1;
      *problem = {false, phone::Side::phone, "no feed", "make one"};
      return std::move(ready);
    };
    stream_ = std::make_unique<MediaStream>(&link, &timers, options, open,
                                            [this](const phone::LinkEnd& end) { done = end; });
    return *stream_;
  }
  void configure(std::uint32_t maxUnacked, Config_Status status = Config_Status_STATUS_READY) {
    Config config;
    config.set_status(status);
    config.set_max_unacked(maxUnacked);
    config.add_configuration_indices(1);
    config.add_configuration_indices(0);
    headUnit.sends(channel, MESSAGE_CONFIG, config);
  }
  void start(std::uint32_t maxUnacked) {
    stream().start(channel, service);
    headUnit.answersOpen(channel);
    headUnit.hears();
    configure(maxUnacked);
  }
  void acknowledge(std::uint32_t count, int session = 9) {
    Ack ack;
    ack.set_session_id(session);
    ack.set_ack(count);
    headUnit.sends(channel, MESSAGE_ACK, ack);
  }
  Bytes unit(int number) {
    return mediaData(static_cast<std::uint64_t>(5007 + (number - 1) * feed->interval),
                     {static_cast<std::uint8_t>(number)});
  }
  void expectFailure(const std::string& words) {
    EXPECT_EQ(stream().state(), State::failed);
    ASSERT_TRUE(done);
    EXPECT_FALSE(done->clean);
    EXPECT_THAT(done->what, HasSubstr(words));
    EXPECT_NE(done->advice, "");
  }
};

TEST_F(PhoneMediaStream, GoesFromOpenToStopInItsOrder) {
  stream().start(channel, service);
  auto heard = headUnit.hears();
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].flags, ATOMIC | CONTROL | ENCRYPTED);
  EXPECT_EQ(heard[0].payload, bytes("00 07 08 00 10 02"));

  headUnit.answersOpen(channel);
  heard = headUnit.hears();
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].channel, channel);
  EXPECT_EQ(heard[0].flags, ATOMIC | ENCRYPTED);
  EXPECT_EQ(heard[0].payload, bytes("80 00 08 03"));  // MESSAGE_SETUP, video

  configure(8);
  EXPECT_THAT(allowed, ElementsAre(1, 0));
  EXPECT_THAT(headUnit.hearsMessages(),
              ElementsAre(bytes("80 01 08 09 10 01"),      // MESSAGE_START, session, index
                          bytes("00 01 C0 C1"),            // MESSAGE_CODEC_CONFIG
                          bytes("00 00"                    // MESSAGE_MEDIA_DATA
                                "00 00 00 00 00 00 13 8F"  // 5007 us
                                "01"),
                          unit(2), unit(3)));
  EXPECT_EQ(stream().state(), State::draining);
  acknowledge(3);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 02")));  // MESSAGE_STOP
  EXPECT_EQ(stream().state(), State::stopped);
  ASSERT_TRUE(done);
  EXPECT_TRUE(done->clean);
}

TEST_F(PhoneMediaStream, WithoutCodecConfigurationSendsNone) {
  feed->config.clear();
  start(1);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 01 08 09 10 01"), unit(1)));
}

TEST_F(PhoneMediaStream, NeverHasMoreUnacknowledgedThanAllowed) {
  feed->count = 100;
  start(2);
  EXPECT_THAT(headUnit.hearsMessages(), SizeIs(2 + 2));
  acknowledge(1);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(unit(3)));
  acknowledge(2);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(unit(4), unit(5)));
  acknowledge(0);
  EXPECT_THAT(headUnit.hearsMessages(), IsEmpty());
  EXPECT_EQ(stream().unacknowledged(), 2u);
  EXPECT_EQ(stream().stats().mostUnacknowledged, 2u);
}

TEST_F(PhoneMediaStream, DoesNotPileUpWhatTheConnectionDoesNotTake) {
  feed->count = 10'000'000;
  start(4'000'000'000);
  const std::uint64_t before = stream().stats().units;
  EXPECT_LT(link.outputSize(), 2u << 20);
  timers.advance(1000);
  EXPECT_EQ(stream().stats().units, before);
  link.takeOutput();
  timers.advance(2000);
  EXPECT_GT(stream().stats().units, before);
  EXPECT_LT(link.outputSize(), 2u << 20);
}

TEST_F(PhoneMediaStream, AcknowledgementsOfAnotherSessionDoNotCount) {
  start(1);
  headUnit.hears();
  acknowledge(1, 8);
  EXPECT_THAT(headUnit.hearsMessages(), IsEmpty());
}

TEST_F(PhoneMediaStream, AcknowledgementsBeyondWhatWasSentGiveNoCredit) {
  feed->count = 100;
  start(2);
  headUnit.hears();
  acknowledge(50);
  EXPECT_THAT(headUnit.hearsMessages(), SizeIs(2));
  EXPECT_EQ(stream().stats().acknowledged, 2u);
  EXPECT_EQ(stream().stats().surplusAcks, 48u);
}

TEST_F(PhoneMediaStream, WaitsForAConfigThatIsReady) {
  stream().start(channel, service);
  headUnit.answersOpen(channel);
  headUnit.hears();
  configure(1, Config_Status_STATUS_WAIT);
  EXPECT_THAT(headUnit.hearsMessages(), IsEmpty());
  configure(1);
  EXPECT_THAT(headUnit.hearsMessages(), SizeIs(3));
}

TEST_F(PhoneMediaStream, IsPacedByTheStreamsOwnTime) {
  options.paced = true;
  timers.advance(1'000'000);
  start(10);
  EXPECT_THAT(headUnit.hearsMessages(), SizeIs(2 + 1));
  timers.advance(1'000'099);
  EXPECT_THAT(headUnit.hearsMessages(), IsEmpty());
  EXPECT_EQ(timers.next(), 1'000'100);
  timers.advance(1'000'100);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(unit(2)));
  timers.advance(1'000'200);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(unit(3)));
}

TEST_F(PhoneMediaStream, CatchesUpAfterAShortDelayAndSlipsAfterALongOne) {
  options.paced = true;
  feed->count = 100;
  feed->interval = 100'000;
  start(1);
  headUnit.hears();
  timers.advance(250'000);
  acknowledge(1);
  acknowledge(1);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(unit(2), unit(3))) << "units 2 and 3 were due already";
  timers.advance(2'000'000);
  acknowledge(1);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(unit(4)));
  acknowledge(1);
  EXPECT_THAT(headUnit.hearsMessages(), IsEmpty()) << "the stream's time has begun anew with unit 4";
  timers.advance(2'100'000);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(unit(5)));
}

TEST_F(PhoneMediaStream, EndsAfterItsLimitOfUnits) {
  options.unitLimit = 2;
  start(10);
  EXPECT_THAT(headUnit.hearsMessages(), SizeIs(2 + 2));
  EXPECT_EQ(feed->given, 2);
  acknowledge(2);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 02")));
}

TEST_F(PhoneMediaStream, FailsWhereItsFeedBreaksOffOnceThatFarIsPlayed) {
  feed->breaks = "the file breaks off";
  start(10);
  EXPECT_FALSE(done);
  acknowledge(3);
  expectFailure("the file breaks off");
  EXPECT_EQ(done->side, phone::Side::phone);
}

TEST_F(PhoneMediaStream, DoesNotWaitForeverForTheLastAcknowledgements) {
  start(10);
  headUnit.hears();
  timers.advance(options.drainLimit);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 02")));
  EXPECT_TRUE(done->clean);
}

TEST_F(PhoneMediaStream, AFeedThatPausesIsResumed) {
  feed->pauses = true;
  start(10);
  EXPECT_THAT(headUnit.hearsMessages(), SizeIs(2));
  feed->pauses = false;
  stream().resume();
  EXPECT_THAT(headUnit.hearsMessages(), SizeIs(3));
}

TEST_F(PhoneMediaStream, StopsInTheMiddleWhenTold) {
  feed->count = 100;
  start(1);
  headUnit.hears();
  stream().stop();
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 02")));
  EXPECT_TRUE(done->clean);
  acknowledge(1);
  EXPECT_THAT(headUnit.hearsMessages(), IsEmpty());
}

TEST_F(PhoneMediaStream, StoppedBeforeItRanItSendsNoStop) {
  stream().start(channel, service);
  headUnit.hears();
  stream().stop();
  EXPECT_THAT(headUnit.hearsMessages(), IsEmpty());
  EXPECT_TRUE(done->clean);
}

TEST_F(PhoneMediaStream, MeasuresTheTimeToEachAcknowledgement) {
  start(10);
  timers.advance(30);
  acknowledge(1);
  timers.advance(50);
  acknowledge(2);
  EXPECT_THAT(stream().stats().ackLatencies, ElementsAre(30, 50, 50));
  EXPECT_EQ(stream().stats().units, 3u);
  EXPECT_EQ(stream().stats().bytes, 3u);
  EXPECT_EQ(stream().stats().finished, 50);
}

TEST_F(PhoneMediaStream, SendsALargeUnitInFragments) {
  feed->count = 1;
  feed->config = pattern(20000);
  start(1);
  const auto heard = headUnit.hears();
  ASSERT_THAT(heard, SizeIs(4));
  EXPECT_EQ(heard[1].flags, FIRST | ENCRYPTED);
  EXPECT_EQ(heard[1].totalLength, 20002u);
  EXPECT_EQ(heard[2].flags, LAST | ENCRYPTED);
}

// ---- Failures ----

TEST_F(PhoneMediaStream, ARefusedChannelIsAFailure) {
  stream().start(channel, service);
  headUnit.answersOpen(channel, STATUS_NO_SUCH_SERVICE);
  expectFailure("refused the channel (status -4)");
}

TEST_F(PhoneMediaStream, ARefusalWithoutAnAnswerIsAFailureAfterItsTime) {
  stream().start(channel, service);
  timers.advance(options.answerLimit - 1);
  EXPECT_FALSE(done);
  timers.advance(options.answerLimit);
  expectFailure("took too long to open the channel");
}

TEST_F(PhoneMediaStream, ASetupWithoutAnAnswerIsAFailureAfterItsTime) {
  stream().start(channel, service);
  headUnit.answersOpen(channel);
  timers.advance(options.answerLimit);
  expectFailure("took too long to answer Setup");
}

TEST_F(PhoneMediaStream, NoAcknowledgementIsAFailureAfterItsTime) {
  feed->count = 100;
  start(2);
  timers.advance(1000);
  acknowledge(1);
  timers.advance(options.answerLimit);
  EXPECT_FALSE(done) << "the time runs from the last acknowledgement on";
  timers.advance(options.answerLimit + 1000);
  expectFailure("took too long to acknowledge");
  EXPECT_EQ(headUnit.hearsMessages().back(), bytes("80 02"));
}

TEST_F(PhoneMediaStream, NothingMayBeUnacknowledgedIsAFailure) {
  start(0);
  expectFailure("max_unacked is 0");
}

TEST_F(PhoneMediaStream, AFeedThatCannotBeMadeIsAFailure) {
  ready.reset();
  start(1);
  expectFailure("no feed");
  EXPECT_THAT(headUnit.hearsMessages(), IsEmpty());
}

TEST_F(PhoneMediaStream, RecordsThatDoNotParseAreFailures) {
  stream().start(channel, service);
  headUnit.answersOpen(channel);
  headUnit.sends(channel, bytes("80 03"));
  expectFailure("Config does not parse");
}

TEST_F(PhoneMediaStream, AnAckThatDoesNotParseIsAFailure) {
  start(1);
  headUnit.sends(channel, bytes("80 04 10 01"));
  expectFailure("Ack does not parse");
}

TEST_F(PhoneMediaStream, AnUnexpectedMessageReportIsAFailure) {
  start(1);
  headUnit.sends(channel, bytes("00 FF"));
  expectFailure("does not accept a message of the stream");
}

TEST_F(PhoneMediaStream, AClosedChannelIsAFailure) {
  start(1);
  headUnit.sends(channel, bytes("00 09"), CONTROL | ENCRYPTED);
  expectFailure("closed the channel");
}

TEST_F(PhoneMediaStream, TheEndOfTheLinkIsItsEndToo) {
  start(1);
  headUnit.hears();
  link.streamEnded();
  expectFailure("closed the connection");
  EXPECT_FALSE(link.hasOutput());
  EXPECT_EQ(timers.next(), std::nullopt);
}

TEST_F(PhoneMediaStream, GoneItLeavesNothingBehind) {
  start(1);
  stream_.reset();
  EXPECT_EQ(timers.next(), std::nullopt);
  acknowledge(1);
  EXPECT_FALSE(link.end());
}

}  // namespace
}  // namespace test
