// One link with all of its traffic at once, both ways, from as many threads as a host may have.

#include <gmock/gmock.h>

#include <future>

#include "FullLink.h"

namespace test {
namespace {

constexpr int MESSAGES = 10000;  // on each channel, and of each sensor

/// The threads of a host that has something to tell at every moment.
class Talkers {
 public:
  explicit Talkers(FullHeadUnit* unit) {
    constexpr int TYPES_EACH = SENSOR_TYPES / 3;
    for (const int first : {1, 1 + TYPES_EACH, 1 + 2 * TYPES_EACH}) {
      starts([unit, first] {
        for (int n = 0; n < MESSAGES; ++n) {
          for (int type = first; type < first + TYPES_EACH; ++type) reportSensor(&unit->sensors, type, n);
        }
        return true;
      });
    }
    starts([unit] {
      for (int n = 0; n < MESSAGES; ++n) reportTouch(&unit->input, static_cast<std::uint64_t>(n));
      return true;
    });
    starts([unit] { return unit->microphoneHost->speaks(&unit->microphone, MESSAGES); });
  }
  /// Waits until all has been said; false if one of them could not say it all.
  bool areDone() {
    bool done = true;
    for (std::future<bool>& one : threads) done = one.get() && done;
    return done;
  }

 private:
  void starts(std::function<bool()> talk) {
    threads.push_back(std::async(std::launch::async, std::move(talk)));
  }
  std::vector<std::future<bool>> threads;
};

class Everything : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(link.comesUp());
    for (const int sink : {VIDEO, MEDIA, GUIDANCE}) {
      streams.push_back(std::make_unique<NumberedStream>(&link.phone(), &link.timers(), sink));
    }
    ASSERT_TRUE(link.pumpUntil([this] {
      return std::all_of(streams.begin(), streams.end(), [](const auto& stream) { return stream->runs(); });
    }));
  }

  bool hasHeardAll() const {
    for (int type = 1; type <= SENSOR_TYPES; ++type) {
      if (link.car().ofSensor(type).due() < MESSAGES) return false;
    }
    return link.car().touches().due() >= MESSAGES && link.car().speech().due() >= MESSAGES &&
           std::all_of(streams.begin(), streams.end(),
                       [](const auto& stream) { return stream->stats().acknowledged >= MESSAGES; });
  }

  void expectStreams() {
    int sink = VIDEO;
    for (const auto& stream : streams) {
      const NumberedPlayer& player = link.headUnit().playerOf(sink++);
      EXPECT_EQ(player.played().words(), asDue(MESSAGES));
      EXPECT_FALSE(player.overrun());
      EXPECT_EQ(player.starts(), 1);
      EXPECT_EQ(player.stops(), 1);
      EXPECT_EQ(stream->stats().acknowledged, static_cast<std::uint64_t>(MESSAGES));
      EXPECT_EQ(stream->stats().surplusAcks, 0U);
      EXPECT_EQ(stream->limit(), FullHeadUnit::LIMIT);
      EXPECT_EQ(stream->stats().mostUnacknowledged, FullHeadUnit::LIMIT) << "the limit was never reached";
    }
  }

  void expectCar() {
    for (int type = 1; type <= SENSOR_TYPES; ++type) {
      EXPECT_EQ(link.car().ofSensor(type).words(), asDue(MESSAGES)) << "sensor " << type;
    }
    EXPECT_EQ(link.car().empty().words(), asDue(MESSAGES));
    EXPECT_EQ(link.car().touches().words(), asDue(MESSAGES));
    EXPECT_EQ(link.car().speech().words(), asDue(MESSAGES));
    EXPECT_EQ(link.headUnit().microphoneHost->acknowledged(), static_cast<std::uint64_t>(MESSAGES));
    EXPECT_FALSE(link.headUnit().microphoneHost->miscounted());
    EXPECT_EQ(link.services().sensors()->stats().damaged, 0U);
    EXPECT_EQ(link.services().input()->stats().damaged, 0U);
    EXPECT_EQ(link.services().microphone()->stats().damaged, 0U);
  }

  FullLink link;
  std::vector<std::unique_ptr<NumberedStream>> streams;
};

TEST_F(Everything, ArrivesWholeOnceAndInOrderWhileAllOfItRunsAtOnce) {
  Talkers talkers(&link.headUnit());
  for (const auto& stream : streams) stream->goesOnTo(MESSAGES);
  const bool complete = link.pumpUntil([this] { return hasHeardAll(); });
  EXPECT_TRUE(talkers.areDone());
  for (const auto& stream : streams) stream->stops();
  EXPECT_TRUE(complete && link.settles());
  expectStreams();
  expectCar();
  EXPECT_THAT(link.phone().violations(), testing::IsEmpty());
}

}  // namespace
}  // namespace test
