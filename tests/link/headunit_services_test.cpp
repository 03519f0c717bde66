#include <gtest/gtest.h>

#include <future>

#include "Pump.h"
#include "QuietHost.h"
#include "TestCredentials.h"
#include "VantryReceiver.h"
#include "headunit/LinkStats.h"
#include "headunit/media/ImageDecoder.h"
#include "headunit/services/ClusterServices.h"
#include "phone/media/MusicLibrary.h"
#include "phone/services/ServicePlayers.h"

// The phone's services and the example host's, over a whole link in memory. The host's threads are real, its
// tuner's time and the phone's are the test's.

namespace headunit {
namespace {

using phone::Micros;

class HeadunitServices : public testing::Test {
 protected:
  HeadunitServices() {
    equipment_.cluster = &cluster;
    equipment_.clusterKeys = &keys;
    equipment_.slowWork = &slowWork_;
    equipment_.decodeImage = decodeImage;
    equipment_.pairedPhones = &paired_;
    equipment_.autoPair = true;
    receiver_.init(::shared_ptr<IControllerCallbacks>(new test::QuietHost));
    const test::TestCredentials& known = test::credentials();
    EXPECT_TRUE(
        receiver_.controller().setClientCreds(known.root, known.headUnit.certificate, known.headUnit.key));
    transport_ = std::make_unique<test::MemoryTransport>(&receiver_);
    services = std::make_unique<ClusterServices>(equipment_, receiver_.messageRouter());
    for (ProtocolEndpointBase* const endpoint : services->endpoints()) receiver_.registerService(endpoint);
    services->begin(&stats_);
    transport_->start();
    receiver_.start();
    phone::LinkOptions options;
    options.credentials = {known.root, known.phone.certificate, known.phone.key};
    link = std::make_unique<phone::PhoneLink>(options);
    players = std::make_unique<phone::ServicePlayers>(link.get(), &timers_, phone::builtInMusic());
    EXPECT_TRUE(test::pump(link.get(), transport_.get(), [this] { return allAreOpen(); }));
  }

  ~HeadunitServices() override {
    services->end();
    transport_->requestStop();
    transport_->waitForExit();
    receiver_.shutdown();
  }

  /// Lets phone and head unit talk until `done`, which is looked at whenever the head unit has taken what the
  /// phone had to say. False if it does not come although they have said all that they have to say.
  bool talkUntil(const std::function<bool(const ClusterView&)>& done) {
    constexpr int ROUNDS = 100;
    for (int i = 0; i < ROUNDS; ++i) {
      if (done(cluster.view())) return true;
      if (!pingGoesRound()) return false;
    }
    return false;
  }
  /// The phone's time goes by, and the two talk.
  void passes(int seconds) {
    for (int i = 0; i < 2 * seconds; ++i) {
      timers_.advance(now_ += 500'000);
      pingGoesRound();
    }
  }
  /// All images that have come are decoded.
  void decodes() {
    std::promise<void> done;
    slowWork_.post([&done] { done.set_value(); });
    done.get_future().wait();
  }
  void tunes(std::chrono::milliseconds time) {
    const TimePoint end = tunerTime_ + time;
    while (tunerTime_ < end) tunerTime_ = services->tuner()->act(tunerTime_);
  }

 private:
  bool allAreOpen() const {
    for (std::uint8_t channel = 1; channel <= 8; ++channel) {
      if (link->channelState(channel) != phone::ChannelState::open) return false;
    }
    return link->state() == phone::LinkState::up;
  }
  bool pingGoesRound() {
    const auto answers = [this] { return link->received(0, MESSAGE_PING_RESPONSE).size(); };
    const std::size_t before = answers();
    const auto pumpUntil = [this](const std::function<bool()>& done) {
      return test::pump(link.get(), transport_.get(), done);
    };
    // What waits to be sent goes first, since the ping would overtake it.
    return pumpUntil([] { return true; }) &&
           (link->sendPing(0), pumpUntil([&] { return answers() > before; }));
  }

  Micros now_ = 0;
  phone::Timers timers_;
  PairedPhones paired_;
  LinkStats stats_{Clock::now()};
  Equipment equipment_;
  VantryReceiver receiver_;
  std::unique_ptr<test::MemoryTransport> transport_;
  TimePoint tunerTime_ = TimePoint(std::chrono::seconds(1000));

 protected:
  Cluster cluster;
  ClusterKeys keys;
  std::unique_ptr<phone::PhoneLink> link;
  std::unique_ptr<ClusterServices> services;
  std::unique_ptr<phone::ServicePlayers> players;

 private:
  SlowWork slowWork_{1};  // its work uses the cluster
};

TEST_F(HeadunitServices, FillTheClusterFromThePhone) {
  EXPECT_TRUE(talkUntil([](const ClusterView& view) {
    return view.turn.meters >= 0 && view.media.known && !view.media.song.empty() && view.phone.known &&
           !view.browser.loading && !view.browser.entries.empty() && view.tuner.on;
  }));
  passes(7);
  decodes();
  const ClusterView view = cluster.view();
  EXPECT_EQ(view.turn.road, "Mill Lane");
  ASSERT_TRUE(view.turn.image);
  EXPECT_EQ(view.turn.image->size.width, 128);
  EXPECT_EQ(view.media.song, players->playlist().current().title);
  EXPECT_TRUE(view.media.playing);
  EXPECT_TRUE(view.media.cover);
  ASSERT_EQ(view.phone.calls.size(), 1U);
  EXPECT_EQ(view.phone.calls[0].caller, "Ada Winter");
  EXPECT_EQ(view.browser.title, "Library");
  EXPECT_TRUE(view.browser.entries[0].image);
  ASSERT_TRUE(view.notice);
  EXPECT_EQ(view.notice->text, "Your parking ends in 20 minutes");
  EXPECT_FALSE(view.pairing);
}

TEST_F(HeadunitServices, CountWhatCame) {
  ASSERT_TRUE(talkUntil([this](const ClusterView& view) {
    const ServiceTotals totals = services->totals();
    return view.turn.meters >= 0 && totals.pairingsAccepted == 1 && totals.radioCommands == 2 &&
           totals.browserPages == 2 && totals.notificationsAcknowledged == 1;
  }));
  passes(7);
  const ServiceTotals totals = services->totals();
  EXPECT_EQ(totals.pairingsAccepted, 1U);
  EXPECT_EQ(totals.radioCommands, 2U);
  EXPECT_EQ(totals.turns, 2U);
  EXPECT_EQ(totals.songs, 1U);
  EXPECT_EQ(totals.calls, 1U);
  EXPECT_EQ(totals.browserPages, 2U);
  EXPECT_EQ(totals.notificationsShown, 1U);
  EXPECT_EQ(totals.notificationsSent, 1U);
  EXPECT_EQ(totals.echoOpened, 1U);
  EXPECT_GE(totals.echoes, 2U);
}

TEST_F(HeadunitServices, NothingOfHalfAMinuteIsRefused) {
  for (int i = 0; i < 30; ++i) {
    passes(1);
    tunes(std::chrono::seconds(1));
  }
  for (int channel = 0; channel < 20; ++channel) {
    EXPECT_TRUE(link->received(static_cast<std::uint8_t>(channel), MESSAGE_UNEXPECTED_MESSAGE).empty())
        << channel;
  }
  EXPECT_GT(services->totals().radioScans, 1U);
}

TEST_F(HeadunitServices, AKeySkipsTheSong) {
  ASSERT_TRUE(talkUntil([](const ClusterView& view) { return !view.media.song.empty(); }));
  const std::string before = cluster.view().media.song;
  keys.press(ClusterKey::right);
  EXPECT_TRUE(talkUntil([&before](const ClusterView& view) { return view.media.song != before; }));
  EXPECT_EQ(cluster.view().media.song, players->playlist().current().title);
}

TEST_F(HeadunitServices, ASongChosenInTheListIsPlayed) {
  const auto isAt = [](const char* title) {
    return [title](const ClusterView& view) { return !view.browser.loading && view.browser.title == title; };
  };
  ASSERT_TRUE(talkUntil(isAt("Library")));
  const std::string album = cluster.view().browser.entries[1].name;
  keys.press(ClusterKey::browser);
  keys.press(ClusterKey::down);
  keys.press(ClusterKey::enter);
  ASSERT_TRUE(talkUntil(isAt(album.c_str())));
  const std::string song = cluster.view().browser.entries[0].name;
  ASSERT_NE(cluster.view().media.song, song);
  keys.press(ClusterKey::enter);
  EXPECT_TRUE(talkUntil([&song](const ClusterView& view) { return view.media.song == song; }));
}

TEST_F(HeadunitServices, ACallThatRingsIsAnsweredByAKey) {
  passes(5);
  ASSERT_EQ(cluster.view().phone.calls.size(), 1U);
  ASSERT_EQ(cluster.view().phone.calls[0].state, PhoneStatus_State_INCOMING);
  keys.press(ClusterKey::enter);
  EXPECT_TRUE(talkUntil([](const ClusterView& view) {
    return !view.phone.calls.empty() && view.phone.calls[0].state == PhoneStatus_State_IN_CALL;
  }));
}

TEST_F(HeadunitServices, ThePhoneScansFromStationToStation) {
  passes(9);
  ASSERT_TRUE(talkUntil([](const ClusterView& view) { return view.tuner.scanning; }));
  tunes(std::chrono::seconds(3));
  EXPECT_TRUE(talkUntil([](const ClusterView& view) { return view.tuner.station == "CAMPUS"; }))
      << "the next above the middle of the band";
}

}  // namespace
}  // namespace headunit
