#include "headunit/services/BrowserService.h"

#include "headunit_services.h"

namespace headunit {
namespace {

struct HeadunitBrowser : ServicesTest {
  BrowserEndpoint browser{SERVICE, context, false};
  BrowserService& user = browser.host();

  BrowserView page() const { return view().browser; }
  std::vector<std::string> names() const {
    std::vector<std::string> all;
    for (const BrowserView::Entry& entry : page().entries) all.push_back(entry.name);
    return all;
  }

  /// A MediaGetNode.
  static Bytes asks(const std::string& path, int start = 0) {
    MediaGetNode request;
    request.set_path(path);
    request.set_start(start);
    request.set_get_album_art(true);
    return message(MESSAGE_MEDIA_GET_NODE, request);
  }

  // What the phone answers.
  void root(const std::vector<std::string>& sources) {
    MediaRootNode node;
    node.set_path("/");
    for (const std::string& name : sources) {
      MediaSource* const source = node.add_media_sources();
      source->set_path("/" + name);
      source->set_name(name);
    }
    sends(MESSAGE_MEDIA_ROOT_NODE, node);
  }
  void source(const std::string& name, const std::vector<std::string>& lists, const std::string& art = "") {
    MediaSourceNode node;
    node.mutable_source()->set_path("/" + name);
    node.mutable_source()->set_name(name);
    node.set_start(0);
    node.set_total(static_cast<int>(lists.size()));
    for (const std::string& one : lists) {
      MediaList* const list = node.add_lists();
      list->set_path("/" + name + "/" + one);
      list->set_type(MediaList_Type_ALBUM);
      list->set_name(one);
      if (!art.empty()) list->set_album_art(art + one);
    }
    sends(MESSAGE_MEDIA_SOURCE_NODE, node);
  }
  void songs(const std::string& path, int start, int count, int total) {
    MediaListNode node;
    node.mutable_list()->set_path(path);
    node.mutable_list()->set_type(MediaList_Type_ALBUM);
    node.mutable_list()->set_name("Shores");
    node.set_start(start);
    node.set_total(total);
    for (int i = start; i < start + count; ++i) {
      MediaSong* const song = node.add_songs();
      song->set_path("/song/" + std::to_string(i));
      song->set_name("Song " + std::to_string(i));
      song->set_artist("Glass Kites");
      song->set_album("Shores");
    }
    sends(MESSAGE_MEDIA_LIST_NODE, node);
  }

  /// The user looks at the first ten of 25 songs.
  void openList() {
    open(&browser);
    user.toggle();
    root({"Library", "Podcasts"});
    user.enter();
    source("Library", {"Shores", "Tides"});
    user.enter();
    songs("/Library/Shores", 0, 10, 25);
    sent();
  }
};

TEST_F(HeadunitBrowser, AsksForTheTopAsSoonAsThePhoneOpensTheService) {
  open(&browser);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 05"      // MESSAGE_MEDIA_GET_NODE
                                        "0A 00"      // path: empty
                                        "10 00"      // start 0
                                        "18 01")));  // with pictures
  EXPECT_TRUE(page().loading);
  EXPECT_FALSE(page().open);
}

TEST_F(HeadunitBrowser, OpensByItselfIfItIsToldTo) {
  BrowserEndpoint eager(SERVICE, context, true);
  open(&eager);
  EXPECT_TRUE(page().open);
}

TEST_F(HeadunitBrowser, ShowsTheSources) {
  open(&browser);
  root({"Library", "Podcasts"});
  EXPECT_THAT(names(), ElementsAre("Library", "Podcasts"));
  EXPECT_FALSE(page().loading);
  EXPECT_EQ(page().total, 2U);
  EXPECT_EQ(page().selected, 0U);
  EXPECT_EQ(tally.totals().browserPages, 1U);
}

TEST_F(HeadunitBrowser, LeavesOutWhatHasAPathTooLongToKeep) {
  open(&browser);
  root({"Library", std::string(5000, 'x'), "Podcasts"});
  EXPECT_THAT(names(), ElementsAre("Library", "Podcasts"));
}

TEST_F(HeadunitBrowser, KeepsNoLongPathOfATop) {
  open(&browser);
  MediaRootNode node;
  node.set_path(std::string(5000, '/'));
  sends(MESSAGE_MEDIA_ROOT_NODE, node);
  EXPECT_FALSE(page().loading);
  EXPECT_EQ(page().path, "");
}

TEST_F(HeadunitBrowser, PassesOverATopWithASingleSource) {
  open(&browser);
  sent();
  root({"Library"});
  EXPECT_THAT(sent(), ElementsAre(asks("/Library")));
  source("Library", {"Shores"});
  EXPECT_EQ(page().title, "Library");
  EXPECT_EQ(page().entries[0].detail, "Album");
  user.toggle();
  user.back();
  EXPECT_FALSE(page().open) << "there is nothing above it to go back to";
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(HeadunitBrowser, AsksAgainWhenTheUserComesBackToAPageThatHasNotCome) {
  open(&browser);
  user.toggle();
  root({"Library", "Podcasts"});
  user.enter();
  sent();
  user.toggle();
  EXPECT_THAT(sent(), IsEmpty());
  user.toggle();
  EXPECT_THAT(sent(), ElementsAre(asks("/Library")));
  source("Library", {"Shores"});
  user.toggle();
  user.toggle();
  EXPECT_THAT(sent(), IsEmpty()) << "it has come";
}

TEST_F(HeadunitBrowser, DoesNotAskForeverAPhoneThatAnswersWithItsTopAlways) {
  open(&browser);
  root({"Library"});
  sent();
  root({"Library"});
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_THAT(names(), ElementsAre("Library"));
}

TEST_F(HeadunitBrowser, GoesDownIntoTheTreeAndBackToWhereItCameFrom) {
  open(&browser);
  user.toggle();
  root({"Library", "Podcasts"});
  sent();
  user.down();
  user.enter();
  EXPECT_TRUE(page().loading);
  EXPECT_THAT(sent(), ElementsAre(asks("/Podcasts")));
  source("Podcasts", {"Daily"});
  EXPECT_THAT(names(), ElementsAre("Daily"));
  user.back();
  EXPECT_THAT(sent(), ElementsAre(asks("/")));
  root({"Library", "Podcasts"});
  EXPECT_EQ(page().selected, 1U);
  user.back();
  EXPECT_FALSE(page().open);
}

TEST_F(HeadunitBrowser, ShowsSongsWithWhatIsKnownOfThem) {
  openList();
  EXPECT_EQ(page().title, "Shores");
  EXPECT_EQ(page().entries[3].name, "Song 3");
  EXPECT_EQ(page().entries[3].detail, "Glass Kites \u00b7 Shores");
  EXPECT_EQ(page().start, 0U);
  EXPECT_EQ(page().total, 25U);
}

TEST_F(HeadunitBrowser, AsksForTheNextPageWhenTheSelectionLeavesThisOne) {
  openList();
  for (int i = 0; i < 9; ++i) user.down();
  EXPECT_EQ(page().selected, 9U);
  EXPECT_THAT(sent(), IsEmpty());
  user.down();
  user.down();
  EXPECT_THAT(sent(), ElementsAre(asks("/Library/Shores", 10))) << "once, however often the key is pressed";
  songs("/Library/Shores", 10, 10, 25);
  EXPECT_EQ(page().start, 10U);
  EXPECT_EQ(page().selected, 0U);
  EXPECT_EQ(page().entries[0].name, "Song 10");
}

TEST_F(HeadunitBrowser, AsksForThePageBeforeAndSelectsItsLast) {
  openList();
  user.pageOn();
  songs("/Library/Shores", 10, 10, 25);
  sent();
  user.up();
  EXPECT_THAT(sent(), ElementsAre(asks("/Library/Shores", 0)));
  songs("/Library/Shores", 0, 10, 25);
  EXPECT_EQ(page().selected, 9U);
}

TEST_F(HeadunitBrowser, TurnsPages) {
  openList();
  user.pageBack();
  EXPECT_THAT(sent(), IsEmpty()) << "there is none before the first";
  user.pageOn();
  EXPECT_THAT(sent(), ElementsAre(asks("/Library/Shores", 10)));
  songs("/Library/Shores", 10, 10, 25);
  user.pageOn();
  songs("/Library/Shores", 20, 5, 25);
  sent();
  user.pageOn();
  EXPECT_THAT(sent(), IsEmpty()) << "there is none behind the last";
  user.pageBack();
  EXPECT_THAT(sent(), ElementsAre(asks("/Library/Shores", 15)));
}

TEST_F(HeadunitBrowser, StaysAtTheEndsOfTheList) {
  open(&browser);
  root({"Library", "Podcasts"});
  sent();
  user.up();
  EXPECT_EQ(page().selected, 0U);
  user.down();
  user.down();
  EXPECT_EQ(page().selected, 1U);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(HeadunitBrowser, HasThePhonePlayASongAndAsksForItsPicture) {
  openList();
  user.down();
  user.enter();
  EXPECT_THAT(sent(), ElementsAre(bytes("80 06"        // MESSAGE_MEDIA_BROWSER_INPUT
                                        "0A 02 08 05"  // input: enter
                                        "12 07") +     // path
                                      test::text("/song/1"),
                                  asks("/song/1")));
  MediaSongNode node;
  node.mutable_song()->set_path("/song/1");
  node.mutable_song()->set_name("Song 1");
  node.set_album_art("image 1");
  sends(MESSAGE_MEDIA_SONG_NODE, node);
  decodeAll();
  EXPECT_EQ(lengthOf(page().entries[1].image), 7U);
  EXPECT_EQ(page().entries[0].image, nullptr);
  EXPECT_EQ(tally.totals().browserActions, 1U);
}

TEST_F(HeadunitBrowser, ShowsPicturesAtTheirEntries) {
  open(&browser);
  root({"Library"});
  source("Library", {"Shores", "Low Tides"}, "image ");
  decodeAll();
  EXPECT_EQ(lengthOf(page().entries[0].image), 12U);
  EXPECT_EQ(lengthOf(page().entries[1].image), 15U);
}

TEST_F(HeadunitBrowser, ALatePictureDoesNotComeToAnotherPage) {
  open(&browser);
  user.toggle();
  root({"Library", "Podcasts"});
  user.enter();
  source("Library", {"Shores", "Low Tides"}, "image ");
  user.back();
  root({"Library", "Podcasts"});
  decodeAll();
  EXPECT_EQ(page().entries[0].image, nullptr);
  EXPECT_EQ(page().entries[1].image, nullptr);
}

TEST_F(HeadunitBrowser, TakesNoPageThatItDidNotAskFor) {
  openList();
  source("Library", {"Shores"});
  songs("/elsewhere", 0, 3, 3);
  root({"Library"});
  EXPECT_EQ(page().path, "/Library/Shores");
  EXPECT_THAT(page().entries, SizeIs(10));
}

TEST_F(HeadunitBrowser, GoesBackWhileAPageIsAwaited) {
  openList();
  user.back();
  source("Library", {"Shores", "Tides"});
  user.down();
  user.enter();
  user.back();
  sent();
  songs("/Library/Tides", 0, 3, 3);  // too late
  EXPECT_THAT(names(), ElementsAre("Shores", "Tides"));
  source("Library", {"Shores", "Tides"});
  EXPECT_EQ(page().selected, 1U);
  EXPECT_FALSE(page().loading);
}

TEST_F(HeadunitBrowser, LivesWithNumbersThatCannotBe) {
  open(&browser);
  root({"Library", "Podcasts"});
  user.enter();
  MediaSourceNode node;
  node.mutable_source()->set_path("/Library");
  node.mutable_source()->set_name("Library");
  node.set_start(-5);
  node.set_total(INT32_MIN);
  node.add_lists()->set_path("/a");
  node.mutable_lists(0)->set_type(MediaList_Type_GENRE);
  sends(MESSAGE_MEDIA_SOURCE_NODE, node);
  EXPECT_EQ(page().start, 0U);
  EXPECT_EQ(page().total, 1U);
  sent();
  user.down();
  user.pageOn();
  user.up();
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(HeadunitBrowser, ShowsNoMoreOfAPageThanAScreenHolds) {
  open(&browser);
  root({"Library", "Podcasts"});
  user.enter();
  source("Library", std::vector<std::string>(5000, "Shores"));
  EXPECT_THAT(page().entries, SizeIs(100));
  EXPECT_EQ(page().total, 5000U);
  sent();
  user.pageOn();
  EXPECT_THAT(sent(), ElementsAre(asks("/Library", 100)));
}

TEST_F(HeadunitBrowser, DoesNotOpenWithoutAPhoneAndForgetsWhatAClosedOneHad) {
  user.toggle();
  EXPECT_FALSE(page().open);
  openList();
  link.closes(CHANNEL);
  EXPECT_FALSE(page().open);
  EXPECT_THAT(page().entries, IsEmpty());
}

}  // namespace
}  // namespace headunit
