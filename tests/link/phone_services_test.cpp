#include <gtest/gtest.h>

#include <map>

#include "../unit/phone_head_unit.h"
#include "VerifyHeadUnit.h"
#include "phone/services/BrowserPlayer.h"
#include "phone/services/ServicePlayers.h"
#include "phone/services/TurnImage.h"

// The phone on every service, in memory, on a clock that the test winds.

namespace test {
namespace {

using phone::Micros;
using Turn = NavigationNextTurnEvent;

constexpr Micros SECOND = 1'000'000;

std::vector<phone::Song> manySongs(int count) {
  std::vector<phone::Song> songs;
  for (int i = 0; i < count; ++i) {
    phone::Song song;
    song.title = "Song " + std::to_string(i);
    song.artist = "Artist";
    song.album = "Album";
    song.durationMs = 5000;
    song.cover = {1, 0, 2};
    songs.push_back(song);
  }
  return songs;
}

class PhoneServices : public testing::Test {
 protected:
  PhoneServices() {
    HeadUnitFaults listening;
    listening.received = [this](phone::Frame frame) -> std::vector<phone::Frame> {
      hears(frame);
      return {frame};
    };
    headUnit_ = std::make_unique<MemoryHeadUnit>(listening);
    std::string error;
    link_ = headUnit_->connect(linkOptions(), &error);
    players_ = std::make_unique<phone::ServicePlayers>(&link_->link(), &timers_, manySongs(12));
    settles();
  }
  ~PhoneServices() override { link_->link().finish({true, phone::Side::phone, "test is over", ""}); }

  void settles() {
    link_->runUntil([] { return false; }, 0);
  }
  void passes(int seconds) {
    for (int i = 0; i < 2 * seconds; ++i) {
      timers_.advance(now_ += SECOND / 2);
      settles();
    }
  }
  template <class Record>
  std::vector<Record> heard(int service, int type) const {
    std::vector<Record> records;
    for (const phone::Bytes& bytes : heard_) {
      if (bytes[0] != channels_.at(service) || bytes.size() < 3 || (bytes[1] << 8 | bytes[2]) != type)
        continue;
      Record record;
      EXPECT_TRUE(record.ParseFromArray(bytes.data() + 3, static_cast<int>(bytes.size() - 3)));
      records.push_back(record);
    }
    return records;
  }
  phone::PhoneLink& link() { return link_->link(); }
  phone::ServicePlayers& players() { return *players_; }

 private:
  void hears(const phone::Frame& frame) {
    ChannelOpenRequest request;
    const bool opens = frame.has(phone::flagControl) && frame.payload.size() > 2 &&
                       frame.payload[1] == MESSAGE_CHANNEL_OPEN_REQUEST;
    if (opens &&
        request.ParseFromArray(frame.payload.data() + 2, static_cast<int>(frame.payload.size() - 2))) {
      channels_[request.service_id()] = frame.channel;
    }
    // Long messages are told by their first frames; this test looks at none of them in full.
    if (frame.kind() != phone::FrameKind::atomic) return;
    phone::Bytes bytes = {frame.channel};
    phone::append(&bytes, frame.payload);
    heard_.push_back(bytes);
  }

  Micros now_ = 0;
  std::map<int, std::uint8_t> channels_;
  std::vector<phone::Bytes> heard_;
  phone::Timers timers_;
  std::unique_ptr<MemoryHeadUnit> headUnit_;
  std::unique_ptr<phone::verify::LinkUnderTest> link_;
  std::unique_ptr<phone::ServicePlayers> players_;
};

TEST_F(PhoneServices, OpensEveryServiceBesideTheStreams) {
  EXPECT_EQ(players().count(), 9u);
  for (int channel = 1; channel <= 9; ++channel) {
    EXPECT_EQ(link().channelState(static_cast<std::uint8_t>(channel)), phone::ChannelState::open) << channel;
  }
}

TEST_F(PhoneServices, NothingOfAMinuteIsRefused) {
  passes(60);
  for (int channel = 0; channel < 20; ++channel) {
    EXPECT_TRUE(link().received(static_cast<std::uint8_t>(channel), MESSAGE_UNEXPECTED_MESSAGE).empty())
        << channel;
  }
  EXPECT_FALSE(link().end().has_value());
}

TEST_F(PhoneServices, CallsRingAreAnsweredHeldAndEnd) {
  passes(30);
  std::set<std::vector<int>> states;
  for (const PhoneStatus& status : heard<PhoneStatus>(PHONE, MESSAGE_PHONE_STATUS)) {
    std::vector<int> now;
    for (const PhoneStatus_Call& call : status.calls()) now.push_back(call.phone_state());
    states.insert(now);
  }
  EXPECT_EQ(states, (std::set<std::vector<int>>{{},
                                                {PhoneStatus::INCOMING},
                                                {PhoneStatus::IN_CALL},
                                                {PhoneStatus::IN_CALL, PhoneStatus::INCOMING},
                                                {PhoneStatus::ON_HOLD, PhoneStatus::IN_CALL}}));
}

TEST_F(PhoneServices, PlaysOneSongAfterTheOther) {
  passes(11);
  const auto songs = heard<MediaPlaybackMetadata>(PLAYBACK, MESSAGE_MEDIA_PLAYBACK_METADATA);
  ASSERT_EQ(songs.size(), 3u);
  EXPECT_EQ(songs[0].song(), "Song 0");
  EXPECT_EQ(songs[2].song(), "Song 2");
  EXPECT_EQ(songs[0].album_art(), std::string("\1\0\2", 3));
}

TEST_F(PhoneServices, AsksToBePaired) {
  const auto requests = heard<BluetoothPairingRequest>(BLUETOOTH, MESSAGE_BLUETOOTH_PAIRING_REQUEST);
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].pairing_method(), BLUETOOTH_PAIRING_METHOD_2);
}

TEST_F(PhoneServices, TunesInsideTheBandAndScansOn) {
  passes(9);
  const auto tuned = heard<RadioSetStationRequest>(RADIO, MESSAGE_RADIO_SET_STATION_REQUEST);
  ASSERT_EQ(tuned.size(), 2u);
  EXPECT_GT(tuned[0].frequency_hz(), 87'500'000);
  EXPECT_EQ(heard<RadioScanRequest>(RADIO, MESSAGE_RADIO_SCAN_REQUEST).size(), 1u);
}

TEST_F(PhoneServices, AnswersTheBrowserFromTheRoot) {
  const auto roots = heard<MediaRootNode>(BROWSER, MESSAGE_MEDIA_ROOT_NODE);
  ASSERT_EQ(roots.size(), 1u);
  EXPECT_EQ(roots[0].media_sources(0).path(), "/library");
}

TEST_F(PhoneServices, NotifiesAfterSubscribing) {
  passes(4);
  EXPECT_EQ(heard<GenericNotificationSubscribe>(NOTIFICATIONS, MESSAGE_GENERIC_NOTIFICATION_SUBSCRIBE).size(),
            1u);
  const auto notes = heard<GenericNotificationMessage>(NOTIFICATIONS, MESSAGE_GENERIC_NOTIFICATION_MESSAGE);
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_FALSE(notes[0].icon().empty());
}

// ---- Parts that need no head unit ----

/// A player on a link that never comes up, spoken to directly.
struct Alone {
  phone::PhoneLink link{phone::LinkOptions()};
  phone::Timers timers;
  phone::Playlist playlist{manySongs(12)};
  phone::BrowserPlayer browser{&link, &timers, &playlist};

  template <class Record>
  Record answerTo(const std::string& path, int start, bool art) {
    MediaGetNode request;
    request.set_path(path);
    request.set_start(start);
    request.set_get_album_art(art);
    phone::Message message;
    message.bytes = phone::messageBytes(MESSAGE_MEDIA_GET_NODE, request);
    browser.onMessage(message);
    phone::FrameDecoder decoder;
    const phone::Bytes sent = link.takeOutput();
    decoder.feed(sent.data(), sent.size());
    phone::Frame frame;
    Record record;
    EXPECT_TRUE(decoder.next(&frame));
    EXPECT_TRUE(record.ParseFromArray(frame.payload.data() + 2, static_cast<int>(frame.payload.size() - 2)));
    return record;
  }
};

TEST(PhoneBrowser, AnswersAListPageByPage) {
  Alone phone;
  const auto first = phone.answerTo<MediaListNode>("/library/album/0", 0, true);
  EXPECT_EQ(first.songs_size(), 10);
  EXPECT_EQ(first.total(), 12);
  const auto second = phone.answerTo<MediaListNode>("/library/album/0", 10, true);
  EXPECT_EQ(second.start(), 10);
  ASSERT_EQ(second.songs_size(), 2);
  EXPECT_EQ(second.songs(1).name(), "Song 11");
  EXPECT_EQ(phone.answerTo<MediaListNode>("/library/album/0", 99, true).songs_size(), 0);
}

TEST(PhoneBrowser, LeavesArtOutWhereItIsNotWanted) {
  Alone phone;
  EXPECT_TRUE(phone.answerTo<MediaSongNode>("/song/3", 0, true).has_album_art());
  EXPECT_FALSE(phone.answerTo<MediaSongNode>("/song/3", 0, false).has_album_art());
  EXPECT_FALSE(phone.answerTo<MediaSourceNode>("/library", 0, false).lists(0).has_album_art());
}

TEST(PhoneBrowser, AnswersAPathThatNamesNothingByTheRoot) {
  Alone phone;
  EXPECT_EQ(phone.answerTo<MediaRootNode>("/song/12", 0, true).path(), "/");
  EXPECT_EQ(phone.answerTo<MediaRootNode>("/song/1x", 0, true).path(), "/");
  EXPECT_EQ(phone.answerTo<MediaRootNode>("", 0, true).path(), "/");
}

TEST(PhoneBrowser, EnterOnASongPlaysIt) {
  Alone phone;
  MediaBrowserInput input;
  input.set_path("/song/7");
  input.mutable_input()->set_action(InstrumentClusterInput::ENTER);
  ::phone::Message message;
  message.bytes = ::phone::messageBytes(MESSAGE_MEDIA_BROWSER_INPUT, input);
  phone.browser.onMessage(message);
  EXPECT_EQ(phone.playlist.current().title, "Song 7");
}

/// A player of the route on a link that never comes up, asked to guide.
struct Guided {
  phone::PhoneLink link{phone::LinkOptions()};
  phone::Timers timers;
  phone::RoutePlayer player;

  explicit Guided(phone::RouteClock clock) : player(&link, &timers, {}, std::move(clock)) {
    phone::Message start;
    start.bytes = phone::messageBytes(MESSAGE_NAVIGATION_STATUS_START, NavigationStatusStart());
    player.onMessage(start);
  }

  /// Takes away all that it has told.
  template <class Record>
  std::vector<Record> told(int type) {
    phone::FrameDecoder decoder;
    const phone::Bytes sent = link.takeOutput();
    decoder.feed(sent.data(), sent.size());
    std::vector<Record> records;
    for (phone::Frame frame; decoder.next(&frame);) {
      if ((frame.payload[0] << 8 | frame.payload[1]) != type) continue;
      Record record;
      EXPECT_TRUE(
          record.ParseFromArray(frame.payload.data() + 2, static_cast<int>(frame.payload.size() - 2)));
      records.push_back(record);
    }
    return records;
  }
};

TEST(PhoneRoutePlayer, GuidesRoundTheRoute) {
  Guided guided(nullptr);
  for (Micros now = 0; now <= 60 * SECOND; now += SECOND / 2) guided.timers.advance(now);
  const auto turns = guided.told<Turn>(MESSAGE_NAVIGATION_NEXT_TURN_EVENT);
  ASSERT_GT(turns.size(), phone::Route::LEGS) << "more than one round";
  for (std::size_t i = 0; i < turns.size(); ++i) {
    const std::size_t leg = i % phone::Route::LEGS;
    EXPECT_EQ(turns[i].road(), phone::Route::roadBehind(leg));
    EXPECT_EQ(turns[i].turn_side(), phone::Route::turnsRight(leg) ? Turn::RIGHT : Turn::LEFT) << i;
    EXPECT_EQ(turns[i].turn_angle(), phone::Route::turnsRight(leg) ? 90 : 270) << i;
  }
}

constexpr Micros SHOWN = 8 * SECOND;  // of the picture

TEST(PhoneRoutePlayer, TellsTheTurnThatThePictureShows) {
  Guided guided([] { return SHOWN; });
  const auto turns = guided.told<Turn>(MESSAGE_NAVIGATION_NEXT_TURN_EVENT);
  ASSERT_EQ(turns.size(), 1u);
  EXPECT_EQ(turns[0].road(), "Mill Lane");
  EXPECT_EQ(turns[0].road(), phone::Route::roadBehind(phone::Route().placeAt(SHOWN).leg));
}

TEST(PhoneRoutePlayer, TellsTheDistanceThatThePictureShows) {
  Guided guided([] { return SHOWN; });
  const phone::Route::Place place = phone::Route().placeAt(SHOWN);
  const auto distances =
      guided.told<NavigationNextTurnDistanceEvent>(MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT);
  ASSERT_EQ(distances.size(), 1u);
  EXPECT_GT(distances[0].distance_meters(), 0);
  EXPECT_EQ(distances[0].distance_meters(), static_cast<int>(place.metres));
  EXPECT_EQ(distances[0].time_to_turn_seconds(), static_cast<int>(place.secondsLeft));
}

TEST(PhoneTurnImage, IsAPngOfTheWantedSizeAndDiffersByAngle) {
  const phone::Bytes right = phone::drawTurn(90, 64, 48);
  ASSERT_GT(right.size(), 24u);
  EXPECT_EQ(phone::readBigEndian<std::uint32_t>(&right[16]), 64u);
  EXPECT_EQ(phone::readBigEndian<std::uint32_t>(&right[20]), 48u);
  EXPECT_NE(right, phone::drawTurn(-90, 64, 48));
  EXPECT_NE(right, phone::drawTurn(130, 64, 48));
  EXPECT_TRUE(phone::drawTurn(0, 0, 48).empty());
  EXPECT_TRUE(phone::drawTurn(0, 5000, 48).empty());
}

}  // namespace
}  // namespace test
