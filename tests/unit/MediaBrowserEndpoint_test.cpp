#include "MediaBrowserEndpoint.h"

#include "ServiceTest.h"

namespace test {
namespace {

/// Keeps what it is given for as long as it lives, which it may: under AddressSanitizer an array that the
/// library frees as well, or that nobody frees, fails the test.
struct RecordingHost : IMediaBrowserCallbacks {
  ~RecordingHost() override {
    for (const MediaRootNodeStruct& node : roots) delete[] node.mediaSources;
    for (const MediaSourceNodeStruct& node : sources) delete[] node.lists;
    for (const MediaListNodeStruct& node : lists) delete[] node.songs;
  }
  void mediaRootNode(const MediaRootNodeStruct& node) override { roots.push_back(node), ++calls; }
  void mediaSourceNode(const MediaSourceNodeStruct& node) override { sources.push_back(node), ++calls; }
  void mediaListNode(const MediaListNodeStruct& node) override { lists.push_back(node), ++calls; }
  void mediaSongNode(const MediaSongNodeStruct& node) override { songs.push_back(node), ++calls; }

  std::vector<MediaRootNodeStruct> roots;
  std::vector<MediaSourceNodeStruct> sources;
  std::vector<MediaListNodeStruct> lists;
  std::vector<MediaSongNodeStruct> songs;
  int calls = 0;
};

struct MediaBrowserEndpointTest : ServiceTest {
  RecordingHost* const host = new RecordingHost();  // owned by the pointer below
  shared_ptr<IMediaBrowserCallbacks> held{host};
  MediaBrowserEndpoint browser{SERVICE, link.router(), held};
  MediaBrowserEndpointTest() { open(&browser); }
};

const std::string ART("\0A\0", 3);

const Bytes ROOT = bytes(
                       "80 01"  // MESSAGE_MEDIA_ROOT_NODE
                       "0A 01") +
                   text("/") +  // path
                   bytes(
                       "12 0C"  // media_sources
                       "0A 02") +
                   text("/a") +                  // path
                   bytes("12 01") + text("A") +  // name
                   bytes(
                       "1A 03 00 41 00"  // album_art, zero bytes included
                       "12 07"           // media_sources
                       "0A 02") +
                   text("/b") +                 // path
                   bytes("12 01") + text("B");  // name

const Bytes SOURCE = bytes(
                         "80 02"  // MESSAGE_MEDIA_SOURCE_NODE
                         "0A 0C"  // source
                         "0A 02") +
                     text("/a") +                  // path
                     bytes("12 01") + text("A") +  // name
                     bytes(
                         "1A 03 00 41 00"  // album_art
                         "10 14"           // start 20
                         "18 19"           // total 25
                         "22 0E"           // lists
                         "0A 02") +
                     text("/l") +  // path
                     bytes(
                         "10 05"  // type: genre
                         "1A 01") +
                     text("L") +  // name
                     bytes(
                         "22 03 00 41 00"  // album_art
                         "22 06"           // lists
                         "0A 02") +
                     text("/m") +     // path
                     bytes("10 02");  // type: album

const Bytes SONG = bytes(
                       "80 04"  // MESSAGE_MEDIA_SONG_NODE
                       "0A 0D"  // song
                       "0A 02") +
                   text("/s") +                  // path
                   bytes("12 01") + text("S") +  // name
                   bytes("1A 01") + text("X") +  // artist
                   bytes("22 01") + text("Y") +  // album
                   bytes(
                       "12 03 00 41 00"  // album_art
                       "18 AC 02");      // duration_seconds 300

/// A list with a page of the songs "0", "1" and so on, each with the artist "a" and the album "b".
Bytes listOf(int songs) {
  Bytes node = bytes(
                   "80 03"  // MESSAGE_MEDIA_LIST_NODE
                   "0A 0E"  // list
                   "0A 02") +
               text("/l") +  // path
               bytes(
                   "10 01"  // type: playlist
                   "1A 01") +
               text("L") +  // name
               bytes(
                   "22 03 00 41 00"  // album_art
                   "10 14"           // start 20
                   "18 19");         // total 25
  for (int i = 0; i < songs; ++i) {
    node = node +
           bytes(
               "22 0C"  // songs
               "0A 01") +
           text("/") +                                 // path
           bytes("12 01") + text(std::to_string(i)) +  // name
           bytes("1A 01") + text("a") +                // artist
           bytes("22 01") + text("b");                 // album
  }
  return node;
}

TEST_F(MediaBrowserEndpointTest, HandsOverTheRoot) {
  EXPECT_EQ(routed(ROOT), STATUS_SUCCESS);
  ASSERT_EQ(host->roots.size(), 1U);
  const MediaRootNodeStruct& root = host->roots[0];
  EXPECT_EQ(root.path, "/");
  ASSERT_EQ(root.mediaSourceCount, 2U);
  EXPECT_EQ(root.mediaSources[0].path, "/a");
  EXPECT_EQ(root.mediaSources[0].name, "A");
  EXPECT_EQ(root.mediaSources[0].albumArt, ART);
  EXPECT_EQ(root.mediaSources[1].path, "/b");
  EXPECT_EQ(root.mediaSources[1].name, "B");
  EXPECT_EQ(root.mediaSources[1].albumArt, "");
  EXPECT_EQ(host->calls, 1);
}

TEST_F(MediaBrowserEndpointTest, HandsOverASourceWithItsLists) {
  EXPECT_EQ(routed(SOURCE), STATUS_SUCCESS);
  ASSERT_EQ(host->sources.size(), 1U);
  const MediaSourceNodeStruct& node = host->sources[0];
  EXPECT_EQ(node.source.path, "/a");
  EXPECT_EQ(node.source.name, "A");
  EXPECT_EQ(node.source.albumArt, ART);
  EXPECT_EQ(node.start, 20);
  EXPECT_EQ(node.total, 25);
  ASSERT_EQ(node.listCount, 2U);
  EXPECT_EQ(node.lists[0].path, "/l");
  EXPECT_EQ(node.lists[0].type, MediaList_Type_GENRE);
  EXPECT_EQ(node.lists[0].name, "L");
  EXPECT_EQ(node.lists[0].albumArt, ART);
  EXPECT_EQ(node.lists[1].type, MediaList_Type_ALBUM);
  EXPECT_EQ(node.lists[1].name + node.lists[1].albumArt, "");
}

TEST_F(MediaBrowserEndpointTest, HandsOverAPageOfAListInItsOrder) {
  EXPECT_EQ(routed(listOf(5)), STATUS_SUCCESS);
  ASSERT_EQ(host->lists.size(), 1U);
  const MediaListNodeStruct& node = host->lists[0];
  EXPECT_EQ(node.list.path, "/l");
  EXPECT_EQ(node.list.type, MediaList_Type_PLAYLIST);
  EXPECT_EQ(node.list.name, "L");
  EXPECT_EQ(node.list.albumArt, ART);
  EXPECT_EQ(node.start, 20);
  EXPECT_EQ(node.total, 25);
  ASSERT_EQ(node.songCount, 5U);
  for (unsigned int i = 0; i < 5; ++i) {
    EXPECT_EQ(node.songs[i].path, "/");
    EXPECT_EQ(node.songs[i].name, std::to_string(i));
    EXPECT_EQ(node.songs[i].artist, "a");
    EXPECT_EQ(node.songs[i].album, "b");
  }
}

TEST_F(MediaBrowserEndpointTest, HandsOverASong) {
  EXPECT_EQ(routed(SONG), STATUS_SUCCESS);
  ASSERT_EQ(host->songs.size(), 1U);
  const MediaSongNodeStruct& node = host->songs[0];
  EXPECT_EQ(node.song.path, "/s");
  EXPECT_EQ(node.song.name, "S");
  EXPECT_EQ(node.song.artist, "X");
  EXPECT_EQ(node.song.album, "Y");
  EXPECT_EQ(node.albumArt, ART);
  EXPECT_EQ(node.durationSeconds, 300U);
}

TEST_F(MediaBrowserEndpointTest, HandsNodesOverInTheOrderOfTheirArrivalAndAnswersNone) {
  sends(SONG);
  sends(ROOT);
  sends(listOf(1));
  sends(SOURCE);
  sends(SONG);
  EXPECT_EQ(host->calls, 5);
  EXPECT_EQ(host->songs.size(), 2U);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(MediaBrowserEndpointTest, NodesWithoutElementsHaveArraysOfNoneThatTheHostOwns) {
  sends(bytes("80 01 0A 00"));              // path, empty
  sends(bytes("80 02 0A 04 0A 00 12 00"));  // source, with an empty path and name
  sends(bytes("80 03 0A 04 0A 00 10 01"));  // list, with an empty path
  ASSERT_EQ(host->calls, 3);
  EXPECT_EQ(host->roots[0].mediaSourceCount, 0U);
  EXPECT_NE(host->roots[0].mediaSources, nullptr);
  EXPECT_EQ(host->sources[0].listCount, 0U);
  EXPECT_NE(host->sources[0].lists, nullptr);
  EXPECT_EQ(host->lists[0].songCount, 0U);
  EXPECT_NE(host->lists[0].songs, nullptr);
}

TEST_F(MediaBrowserEndpointTest, IndicesOfAPageAreNotChecked) {
  sends(
      bytes("80 03 0A 04 0A 00 10 01"
            "10 FF FF FF FF FF FF FF FF FF 01"  // start -1
            "18 00"));                          // total 0
  ASSERT_EQ(host->lists.size(), 1U);
  EXPECT_EQ(host->lists[0].start, -1);
  EXPECT_EQ(host->lists[0].total, 0);
}

TEST_F(MediaBrowserEndpointTest, ASourceNodeWithoutItsSourceReadsAsEmptyTexts) {
  MediaSourceNode node;  // as a record, since no message without it parses
  node.set_start(20);
  node.set_total(25);
  node.add_lists()->set_path("/l");
  EXPECT_EQ(browser.handleSourceNode(node), STATUS_SUCCESS);
  ASSERT_EQ(host->sources.size(), 1U);
  const MediaSourceNodeStruct& seen = host->sources[0];
  EXPECT_EQ(seen.source.path + seen.source.name + seen.source.albumArt, "");
  EXPECT_EQ(seen.start, 20);
  EXPECT_EQ(seen.total, 25);
  ASSERT_EQ(seen.listCount, 1U);
  EXPECT_EQ(seen.lists[0].path, "/l");
}

TEST_F(MediaBrowserEndpointTest, ListAndSongNodesWithoutTheirHeadsReadAsEmptyTexts) {
  EXPECT_EQ(browser.handleListNode(MediaListNode()), STATUS_SUCCESS);
  EXPECT_EQ(browser.handleSongNode(MediaSongNode()), STATUS_SUCCESS);
  ASSERT_EQ(host->calls, 2);
  EXPECT_EQ(host->lists[0].list.path + host->lists[0].list.name, "");
  EXPECT_EQ(host->lists[0].list.type, MediaList_Type_PLAYLIST);
  EXPECT_EQ(host->songs[0].song.path + host->songs[0].song.name, "");
}

TEST_F(MediaBrowserEndpointTest, CopyingASourceKeepsWhatTheRecordLeavesOut) {
  MediaSourceStruct copy{"path", "name", "art"};
  MediaSource source;
  browser.copySourceNode(source, &copy);
  EXPECT_EQ(copy.path + copy.name + copy.albumArt, "pathnameart");
  source.set_name("");
  browser.copySourceNode(source, &copy);
  EXPECT_EQ(copy.path + copy.name + copy.albumArt, "pathart");
}

TEST_F(MediaBrowserEndpointTest, CopyingAListOrASongOverwritesEverything) {
  MediaListStruct list{"path", 5, "name", "art"};
  browser.copyListNode(MediaList(), &list);
  EXPECT_EQ(list.path + list.name + list.albumArt, "");
  EXPECT_EQ(list.type, MediaList_Type_PLAYLIST);
  MediaSongStruct song{"path", "name", "artist", "album"};
  browser.copySongNode(MediaSong(), &song);
  EXPECT_EQ(song.path + song.name + song.artist + song.album, "");
}

TEST_F(MediaBrowserEndpointTest, WithoutCallbacksNodesCountAsHandled) {
  MediaBrowserEndpoint deaf(SERVICE, link.router(), shared_ptr<IMediaBrowserCallbacks>());
  endpoint = &deaf;
  for (const Bytes& node : {ROOT, SOURCE, listOf(2), SONG}) EXPECT_EQ(routed(node), STATUS_SUCCESS);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(MediaBrowserEndpointTest, AsksForANode) {
  EXPECT_EQ(browser.mediaGetNode("/a", 300, true), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 05"  // MESSAGE_MEDIA_GET_NODE
                                        "0A 02") +
                                  text("/a") +       // path
                                  bytes("10 AC 02"   // start 300
                                        "18 01")));  // get_album_art: the default, and said so
}

TEST_F(MediaBrowserEndpointTest, AsksWithAllFieldsEvenIfTheyAreEmpty) {
  EXPECT_EQ(browser.mediaGetNode("", 0, false), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 05"
                                        "0A 00"      // path
                                        "10 00"      // start
                                        "18 00")));  // get_album_art
}

TEST_F(MediaBrowserEndpointTest, AsksBeyondEveryEnd) {
  browser.mediaGetNode("", UINT32_MAX, false);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 05 0A 00"
                                        "10 FF FF FF FF FF FF FF FF FF 01"  // start -1
                                        "18 00")));
}

TEST_F(MediaBrowserEndpointTest, SendsAKeyForANode) {
  EXPECT_EQ(browser.reportAction("/a", 7), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 06"        // MESSAGE_MEDIA_BROWSER_INPUT
                                        "0A 02 08 07"  // input, action: call
                                        "12 02") +
                                  text("/a")));  // path
}

TEST_F(MediaBrowserEndpointTest, SendsAKeyWithoutAPath) {
  EXPECT_EQ(browser.reportAction("", 1), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 06"
                                        "0A 02 08 01")));  // input, action: up; and no path
}

TEST_F(MediaBrowserEndpointTest, RefusesKeysThatTheClusterDoesNotHave) {
  for (const unsigned int action : {0U, 8U, UINT32_MAX}) {
    EXPECT_EQ(browser.reportAction("/a", action), STATUS_INVALID_INPUT);
  }
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(MediaBrowserEndpointTest, SendsNothingOnAClosedChannelAndReportsSuccess) {
  close();
  EXPECT_EQ(browser.mediaGetNode("/a", 0, true), STATUS_SUCCESS);
  EXPECT_EQ(browser.reportAction("/a", 1), STATUS_SUCCESS);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(MediaBrowserEndpointTest, AdvertisesItselfAndNothingElse) {
  EXPECT_EQ(advertised(), bytes("0A 04"     // services
                                "08 07"     // id
                                "5A 00"));  // media_browser_service
}

TEST_F(MediaBrowserEndpointTest, RefusesWhatDoesNotParse) {
  expectUnparsable(bytes("80 01"), "MediaBrowserEndpoint");                    // no path
  expectUnparsable(bytes("80 01 0A 00 12 02 0A 00"), "MediaBrowserEndpoint");  // a source without a name
  expectUnparsable(bytes("80 02 10 01 22 04 0A 00 10 01"), "MediaBrowserEndpoint");  // no source
  expectUnparsable(bytes("80 03 10 01"), "MediaBrowserEndpoint");                    // no list
  expectUnparsable(bytes("80 03 0A 04 0A 00 10 06"), "MediaBrowserEndpoint");        // no such type of list
  expectUnparsable(bytes("80 04 18 01"), "MediaBrowserEndpoint");                    // no song
  expectUnparsable(bytes("80 04 0A 05 0A"), "MediaBrowserEndpoint");                 // cut off
  EXPECT_EQ(host->calls, 0);
}

TEST_F(MediaBrowserEndpointTest, RefusesEveryOtherType) {
  expectUnknownTypes({0x8000, 0x8005, 0x8006, 0x8007, 0, 255, 0xFFFF});
}

}  // namespace
}  // namespace test
