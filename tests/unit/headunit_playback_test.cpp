#include "headunit/services/PlaybackService.h"

#include "headunit_log.h"
#include "headunit_services.h"

namespace headunit {
namespace {

struct HeadunitPlayback : ServicesTest {
  PlaybackEndpoint playback{SERVICE, context};

  void plays(const std::string& song, const std::string& cover = "") {
    MediaPlaybackMetadata record;
    record.set_song(song);
    record.set_artist("Glass Kites");
    record.set_album("Shores");
    record.set_playlist("Evening");
    record.set_duration_seconds(215);
    if (!cover.empty()) record.set_album_art(cover);
    sends(MESSAGE_MEDIA_PLAYBACK_METADATA, record);
  }
};

TEST_F(HeadunitPlayback, ShowsTheSong) {
  open(&playback);
  plays("Low Tide");
  const PlayingView media = view().media;
  EXPECT_TRUE(media.known);
  EXPECT_EQ(media.song, "Low Tide");
  EXPECT_EQ(media.artist, "Glass Kites");
  EXPECT_EQ(media.album, "Shores");
  EXPECT_EQ(media.playlist, "Evening");
  EXPECT_EQ(media.durationSeconds, 215U);
  EXPECT_EQ(tally.totals().songs, 1U);
}

TEST_F(HeadunitPlayback, ShowsThePlayersStateAndKeepsTheSong) {
  open(&playback);
  plays("Low Tide");
  MediaPlaybackStatus status;
  status.set_state(MediaPlaybackStatus_State_PLAYING);
  status.set_media_source("Library");
  status.set_playback_seconds(17);
  status.set_shuffle(true);
  status.set_repeat_one(true);
  sends(MESSAGE_MEDIA_PLAYBACK_STATUS, status);
  PlayingView media = view().media;
  EXPECT_TRUE(media.playing);
  EXPECT_EQ(media.source, "Library");
  EXPECT_EQ(media.positionSeconds, 17U);
  EXPECT_TRUE(media.shuffle);
  EXPECT_FALSE(media.repeat);
  EXPECT_TRUE(media.repeatOne);
  EXPECT_EQ(media.song, "Low Tide");
  status.set_state(MediaPlaybackStatus_State_PAUSED);
  sends(MESSAGE_MEDIA_PLAYBACK_STATUS, status);
  EXPECT_FALSE(view().media.playing);
}

TEST_F(HeadunitPlayback, SurvivesACoverForWhichThereIsNoMemory) {
  ImageLoader scarce([](const std::function<void()>&) { throw std::bad_alloc(); }, decode, &cluster);
  ServiceContext poor = context;
  poor.images = &scarce;
  const LoggedLines lines;
  PlaybackEndpoint service(SERVICE, poor);
  open(&service);
  plays("Low Tide", "image");
  EXPECT_THAT(lines.waitFor("left out"), testing::HasSubstr("service 7 is left out: std::bad_alloc"));
  plays("High Tide");
  EXPECT_EQ(view().media.song, "High Tide");
}

TEST_F(HeadunitPlayback, ShowsTheCoverOfTheSongThatPlaysNow) {
  open(&playback);
  plays("Low Tide", "image 1");
  plays("High Water", "image number 2");
  ASSERT_THAT(posted, SizeIs(2));
  posted[1]();
  posted[0]();
  EXPECT_EQ(lengthOf(view().media.cover), 14U);
}

TEST_F(HeadunitPlayback, ShowsACoverThatIsKnownAtOnce) {
  open(&playback);
  plays("Low Tide", "image 1");
  decodeAll();
  plays("High Water", "image 1");
  EXPECT_EQ(lengthOf(view().media.cover), 7U);
  EXPECT_THAT(posted, IsEmpty());
}

TEST_F(HeadunitPlayback, ShowsNoCoverForASongWithoutOne) {
  open(&playback);
  plays("Low Tide", "image 1");
  decodeAll();
  plays("High Water");
  EXPECT_EQ(view().media.cover, nullptr);
  plays("Slack", "no picture");
  decodeAll();
  EXPECT_EQ(view().media.cover, nullptr);
}

TEST_F(HeadunitPlayback, CutsATextThatNoScreenCanShowWithoutSplittingACharacter) {
  open(&playback);
  std::string accented = "x";
  for (int i = 0; i < 5000; ++i) accented += "\u00e9";
  plays(accented);
  const std::string song = view().media.song;
  EXPECT_EQ(song, accented.substr(0, 239) + "\u2026");
}

TEST_F(HeadunitPlayback, HandsKeysToThePlayer) {
  open(&playback);
  EXPECT_TRUE(playback.host().press(InstrumentClusterInput_InstrumentClusterAction_RIGHT));
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02"      // MESSAGE_INSTRUMENT_CLUSTER_INPUT
                                        "08 04")));  // action: right
}

TEST_F(HeadunitPlayback, HasNobodyToHandKeysToBeforeTheChannelOpens) {
  EXPECT_FALSE(playback.host().press(InstrumentClusterInput_InstrumentClusterAction_RIGHT));
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(HeadunitPlayback, ForgetsTheSongWhenTheChannelCloses) {
  open(&playback);
  plays("Low Tide", "image 1");
  link.closes(CHANNEL);
  decodeAll();
  EXPECT_FALSE(view().media.known);
  EXPECT_EQ(view().media.cover, nullptr);
}

}  // namespace
}  // namespace headunit
