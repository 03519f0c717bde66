#include "headunit/services/Tuner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace headunit {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int FIRST_HZ = 88'000'000;
constexpr int SECOND_HZ = 88'400'000;

/// A band with two stations, and a clock that is wound by hand.
struct HeadunitTuner : testing::Test {
  std::vector<std::pair<bool, int>> scans;
  int changes = 0;
  int texts = 0;
  Tuner tuner{{{FIRST_HZ, "FIRST", "D001", "News", {"one", "two"}, false, 0},
               {SECOND_HZ, "SECOND", "D002", "Pop", {"three"}, true, FIRST_HZ}},
              {[this] { ++changes; }, [this](bool found, int hertz) { scans.emplace_back(found, hertz); },
               [this] { ++texts; }}};
  TimePoint now = TimePoint(std::chrono::seconds(1000));

  void letPass(std::chrono::milliseconds time) {
    const TimePoint end = now + time;
    while (now < end) now = tuner.act(now);
  }
};

TEST_F(HeadunitTuner, IsOffAtFirst) {
  EXPECT_FALSE(tuner.view().on);
  EXPECT_FALSE(tuner.hearsStation());
  EXPECT_EQ(tuner.station().programService, "");
}

TEST_F(HeadunitTuner, TunesToAStation) {
  EXPECT_TRUE(tuner.tune(SECOND_HZ));
  const TunerView view = tuner.view();
  EXPECT_TRUE(view.on);
  EXPECT_EQ(view.frequencyHz, SECOND_HZ);
  EXPECT_EQ(view.station, "SECOND");
  EXPECT_EQ(view.text, "three");
  EXPECT_TRUE(view.stereo);
  EXPECT_EQ(changes, 1);
}

TEST_F(HeadunitTuner, TellsWhatTheStationSends) {
  tuner.tune(SECOND_HZ);
  RdsData data = tuner.station();
  EXPECT_EQ(data.programService, "SECOND");
  EXPECT_EQ(data.programIdentification, "D002");
  EXPECT_EQ(data.programType, "Pop");
  EXPECT_EQ(data.radioText, "three");
  EXPECT_EQ(data.alternativeFrequencyHz, FIRST_HZ);
  EXPECT_EQ(data.stereo, 2);
  EXPECT_EQ(data.hd, 1);
  tuner.tune(FIRST_HZ);
  data = tuner.station();
  EXPECT_EQ(data.stereo, 1);
  EXPECT_EQ(data.alternativeFrequencyHz, 0);
}

TEST_F(HeadunitTuner, TunesToAChannelWithoutAStation) {
  EXPECT_TRUE(tuner.tune(FIRST_HZ + Tuner::SPACING_HZ));
  EXPECT_TRUE(tuner.isOn());
  EXPECT_FALSE(tuner.hearsStation());
  EXPECT_EQ(tuner.station().programService, "");
}

TEST_F(HeadunitTuner, TunesToBothEndsOfTheBandAndNotBeyond) {
  EXPECT_TRUE(tuner.tune(Tuner::LOWEST_HZ));
  EXPECT_TRUE(tuner.tune(Tuner::HIGHEST_HZ));
  for (const int wrong : {0, 1, -1, Tuner::LOWEST_HZ - Tuner::SPACING_HZ,
                          Tuner::HIGHEST_HZ + Tuner::SPACING_HZ, FIRST_HZ + 1, INT32_MIN, INT32_MAX}) {
    EXPECT_FALSE(tuner.tune(wrong)) << wrong;
  }
  EXPECT_EQ(tuner.view().frequencyHz, Tuner::HIGHEST_HZ) << "nothing has changed";
}

TEST_F(HeadunitTuner, ScansToTheNextStation) {
  tuner.tune(FIRST_HZ);
  tuner.scan(true);
  EXPECT_TRUE(tuner.view().scanning);
  EXPECT_FALSE(tuner.hearsStation());
  letPass(milliseconds(60));
  EXPECT_THAT(scans, IsEmpty());
  EXPECT_EQ(tuner.view().frequencyHz, FIRST_HZ + 3 * Tuner::SPACING_HZ);
  letPass(milliseconds(20));
  EXPECT_THAT(scans, ElementsAre(std::pair(true, SECOND_HZ)));
  EXPECT_FALSE(tuner.view().scanning);
  EXPECT_TRUE(tuner.hearsStation());
  letPass(milliseconds(1000));
  EXPECT_THAT(scans, testing::SizeIs(1));
}

TEST_F(HeadunitTuner, ScansBackwardsAndRoundTheEndOfTheBand) {
  tuner.tune(SECOND_HZ);
  tuner.scan(false);
  letPass(milliseconds(80));
  EXPECT_THAT(scans, ElementsAre(std::pair(true, FIRST_HZ)));
  tuner.scan(false);
  letPass(std::chrono::seconds(10));
  EXPECT_EQ(scans.back(), std::pair(true, SECOND_HZ));
}

TEST_F(HeadunitTuner, ScanningSwitchesOn) {
  tuner.scan(true);
  EXPECT_TRUE(tuner.isOn());
}

TEST_F(HeadunitTuner, AScanUnderWayTurnsAndEndsOnce) {
  tuner.tune(FIRST_HZ + 2 * Tuner::SPACING_HZ);
  tuner.scan(true);
  letPass(milliseconds(20));
  tuner.scan(false);
  letPass(std::chrono::seconds(2));
  EXPECT_EQ(scans.size(), 1U);
}

TEST_F(HeadunitTuner, AnEmptyBandIsScannedOnceRound) {
  Tuner deaf({}, {[] {}, [this](bool found, int hertz) { scans.emplace_back(found, hertz); }, [] {}});
  deaf.tune(FIRST_HZ);
  deaf.scan(true);
  for (TimePoint time = now; time < now + std::chrono::seconds(10); time = deaf.act(time)) {
  }
  EXPECT_THAT(scans, ElementsAre(std::pair(false, FIRST_HZ)));
}

TEST_F(HeadunitTuner, TuningAndSwitchingOffEndAScan) {
  tuner.scan(true);
  tuner.tune(SECOND_HZ);
  EXPECT_THAT(scans, ElementsAre(std::pair(false, SECOND_HZ)));
  tuner.scan(true);
  tuner.switchOff();
  EXPECT_THAT(scans, testing::SizeIs(2));
  EXPECT_FALSE(scans.back().first);
  const int frequency = tuner.view().frequencyHz;
  letPass(milliseconds(500));
  EXPECT_EQ(tuner.view().frequencyHz, frequency);
}

TEST_F(HeadunitTuner, KeepsItsFrequencyWhileItIsOff) {
  tuner.tune(SECOND_HZ);
  tuner.switchOff();
  EXPECT_FALSE(tuner.hearsStation());
  EXPECT_EQ(tuner.view().station, "");
  tuner.switchOn();
  EXPECT_EQ(tuner.view().station, "SECOND");
}

TEST_F(HeadunitTuner, ShowsTheTextsOfAStationInTurn) {
  tuner.tune(FIRST_HZ);
  letPass(milliseconds(4900));
  EXPECT_EQ(tuner.view().text, "one");
  EXPECT_EQ(texts, 0);
  letPass(milliseconds(200));
  EXPECT_EQ(tuner.view().text, "two");
  EXPECT_EQ(texts, 1);
  letPass(milliseconds(5000));
  EXPECT_EQ(tuner.view().text, "one");
  EXPECT_EQ(texts, 2);
}

TEST_F(HeadunitTuner, TellsOfNoTextsWhereThereIsNoStation) {
  letPass(std::chrono::seconds(20));
  tuner.tune(FIRST_HZ + Tuner::SPACING_HZ);
  letPass(std::chrono::seconds(20));
  EXPECT_EQ(texts, 0);
}

TEST(HeadunitStations, AreSortedAndEachIsAChannelOfTheBand) {
  const std::vector<Station> stations = stationsAround();
  ASSERT_GE(stations.size(), 3U);
  Tuner tuner(stations, {[] {}, [](bool, int) {}, [] {}});
  int last = 0;
  for (const Station& station : stations) {
    EXPECT_GT(station.frequencyHz, last);
    last = station.frequencyHz;
    EXPECT_TRUE(tuner.tune(station.frequencyHz));
    EXPECT_FALSE(station.texts.empty());
    EXPECT_LE(station.name.size(), 8U);
    EXPECT_TRUE(station.alternativeHz == 0 || tuner.tune(station.alternativeHz));
  }
}

}  // namespace
}  // namespace headunit
