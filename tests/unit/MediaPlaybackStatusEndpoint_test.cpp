#include "MediaPlaybackStatusEndpoint.h"

#include "ServiceTest.h"

namespace test {
namespace {

struct RecordingHost : IMediaPlaybackStatusCallbacks {
  void mediaPlaybackStatus(MediaPlaybackStatusStruct status) override { statuses.push_back(status); }
  void mediaPlaybackMetadata(MediaPlaybackMetadataStruct metadata) override { songs.push_back(metadata); }

  std::vector<MediaPlaybackStatusStruct> statuses;
  std::vector<MediaPlaybackMetadataStruct> songs;
};

struct MediaPlaybackStatusEndpointTest : ServiceTest {
  RecordingHost* const host = new RecordingHost();  // owned by the pointer below
  shared_ptr<IMediaPlaybackStatusCallbacks> held{host};
  MediaPlaybackStatusEndpoint playback{SERVICE, link.router(), held};
  MediaPlaybackStatusEndpointTest() { open(&playback); }
};

const Bytes STATUS = bytes(
                         "80 01"  // MESSAGE_MEDIA_PLAYBACK_STATUS
                         "08 02"  // state: playing
                         "12 04") +
                     text("Band") +  // media_source
                     bytes(
                         "18 AC 02"  // playback_seconds 300
                         "20 01"     // shuffle
                         "28 00"     // repeat
                         "30 01");   // repeat_one

const Bytes SONG = bytes(
                       "80 03"  // MESSAGE_MEDIA_PLAYBACK_METADATA
                       "0A 02") +
                   text("So") +                   // song
                   bytes("12 02") + text("Ar") +  // artist
                   bytes("1A 02") + text("Al") +  // album
                   bytes(
                       "22 03 00 41 00"  // album_art, zero bytes included
                       "2A 02") +
                   text("Pl") +  // playlist
                   bytes(
                       "30 AC 02"  // duration_seconds 300
                       "38 05");   // rating 5

TEST_F(MediaPlaybackStatusEndpointTest, HandsOverTheStatus) {
  sends(STATUS);
  ASSERT_EQ(host->statuses.size(), 1U);
  const MediaPlaybackStatusStruct& status = host->statuses[0];
  EXPECT_EQ(status.state, MediaPlaybackStatus_State_PLAYING);
  EXPECT_EQ(status.mediaSource, "Band");
  EXPECT_EQ(status.playbackSeconds, 300U);
  EXPECT_TRUE(status.shuffle);
  EXPECT_FALSE(status.repeat);
  EXPECT_TRUE(status.repeatOne);
  EXPECT_EQ(routed(STATUS), STATUS_SUCCESS);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(MediaPlaybackStatusEndpointTest, AnEmptyStatusReadsAsDefaults) {
  sends(bytes("80 01"));
  ASSERT_EQ(host->statuses.size(), 1U);
  const MediaPlaybackStatusStruct& status = host->statuses[0];
  EXPECT_EQ(status.state, MediaPlaybackStatus_State_STOPPED);
  EXPECT_EQ(status.mediaSource, "");
  EXPECT_EQ(status.playbackSeconds, 0U);
  EXPECT_FALSE(status.shuffle || status.repeat || status.repeatOne);
}

TEST_F(MediaPlaybackStatusEndpointTest, HandsOverTheSongWithAlbumAndArtistInTheirPlaces) {
  sends(SONG);
  ASSERT_EQ(host->songs.size(), 1U);
  // In the order of the members.
  const auto& [song, album, artist, albumArt, playlist, durationSeconds, rating] = host->songs[0];
  EXPECT_EQ(song, "So");
  EXPECT_EQ(album, "Al");
  EXPECT_EQ(artist, "Ar");
  EXPECT_EQ(albumArt, std::string("\0A\0", 3));
  EXPECT_EQ(playlist, "Pl");
  EXPECT_EQ(durationSeconds, 300U);
  EXPECT_EQ(rating, 5);
  EXPECT_EQ(routed(SONG), STATUS_SUCCESS);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(MediaPlaybackStatusEndpointTest, ASongAloneLeavesTheRestEmpty) {
  sends(bytes("80 03 0A 02") + text("So"));
  ASSERT_EQ(host->songs.size(), 1U);
  const auto& [song, album, artist, albumArt, playlist, durationSeconds, rating] = host->songs[0];
  EXPECT_EQ(song, "So");
  EXPECT_EQ(album + artist + albumArt + playlist, "");
  EXPECT_EQ(durationSeconds, 0U);
  EXPECT_EQ(rating, 0);
}

TEST_F(MediaPlaybackStatusEndpointTest, TheHostMayKeepWhatItIsGiven) {
  sends(SONG);
  sends(bytes("80 03"));
  ASSERT_EQ(host->songs.size(), 2U);
  EXPECT_EQ(host->songs[0].albumArt.size(), 3U);
}

TEST_F(MediaPlaybackStatusEndpointTest, WithoutCallbacksMessagesCountAsHandled) {
  MediaPlaybackStatusEndpoint deaf(SERVICE, link.router(), shared_ptr<IMediaPlaybackStatusCallbacks>());
  endpoint = &deaf;
  EXPECT_EQ(routed(STATUS), STATUS_SUCCESS);
  EXPECT_EQ(routed(SONG), STATUS_SUCCESS);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(MediaPlaybackStatusEndpointTest, SendsEveryKeyOfTheCluster) {
  for (unsigned int action = 1; action <= 7; ++action) {
    EXPECT_EQ(playback.reportAction(action), STATUS_SUCCESS);
    EXPECT_THAT(sent(), ElementsAre(bytes("80 02 08") +  // MESSAGE_INSTRUMENT_CLUSTER_INPUT
                                    Bytes{static_cast<std::uint8_t>(action)}));  // action
  }
}

TEST_F(MediaPlaybackStatusEndpointTest, RefusesKeysThatTheClusterDoesNotHave) {
  for (const unsigned int action : {0U, 8U, 0x80000001U, UINT32_MAX}) {
    EXPECT_EQ(playback.reportAction(action), STATUS_INVALID_INPUT);
  }
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(MediaPlaybackStatusEndpointTest, DropsKeysOnAClosedChannelAndReportsSuccess) {
  close();
  EXPECT_EQ(playback.reportAction(7), STATUS_SUCCESS);
  EXPECT_EQ(playback.reportAction(8), STATUS_INVALID_INPUT);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(MediaPlaybackStatusEndpointTest, AdvertisesItselfAndNothingElse) {
  EXPECT_EQ(advertised(), bytes("0A 04"     // services
                                "08 07"     // id
                                "4A 00"));  // media_playback_service
}

TEST_F(MediaPlaybackStatusEndpointTest, RefusesWhatDoesNotParse) {
  expectUnparsable(bytes("80 01 12 04 41"), "MediaPlaybackStatusEndpoint");  // cut off
  expectUnparsable(bytes("80 03 22 7F"), "MediaPlaybackStatusEndpoint");
  EXPECT_TRUE(host->statuses.empty() && host->songs.empty());
}

TEST_F(MediaPlaybackStatusEndpointTest, RefusesEveryOtherType) {
  expectUnknownTypes({0x8000, 0x8002, 0x8004, 0, 255, 0xFFFF});
}

}  // namespace
}  // namespace test
