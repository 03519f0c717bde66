// Every service of a head unit open on one link, with traffic both ways on each.

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <future>

#include "FullLink.h"

namespace test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int ROUNDS = 10;
constexpr Number EACH = 100;  // messages of each kind in a round

/// The phone's ear on the channel of one service.
class Listener : public phone::ChannelHandler {
 public:
  explicit Listener(int service) {
    for (const MessageKind& kind : heardByThePhone()) {
      if (kind.service == service) heard[kind.type].kind = &kind;
    }
  }
  bool isOpen() const { return open; }
  bool hasHeard(Number count) const {
    return std::all_of(heard.begin(), heard.end(),
                       [count](const auto& one) { return one.second.arrivals.due() >= count; });
  }
  void expect(Number count) const {
    for (const auto& [type, one] : heard) {
      EXPECT_EQ(one.arrivals.words(), asDue(count)) << "service " << one.kind->service << " type " << type;
    }
    EXPECT_EQ(unknown, 0);
  }

  void onOpened() override { open = true; }
  void onMessage(const phone::Message& message) override {
    const auto found = heard.find(message.type());
    if (found == heard.end()) {
      ++unknown;
      return;
    }
    auto& [kind, arrivals] = found->second;
    arrivals.takes(Bytes(message.bytes) == kind->message(arrivals.due()));
  }

 private:
  struct Heard {
    const MessageKind* kind = nullptr;
    Arrivals arrivals;
  };
  std::map<int, Heard> heard;
  bool open = false;
  int unknown = 0;
};

class AllServices : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(link.comesUp());
    for (int sink = VIDEO; sink <= TELEPHONY; ++sink) {
      streams.push_back(std::make_unique<NumberedStream>(&link.phone(), &link.timers(), sink));
    }
    for (int service = BLUETOOTH; service <= VERIFICATION; ++service) {
      channels[service] = link.phone().unusedChannel();
      link.phone().openChannel(channels[service], service,
                               &listeners.emplace(service, service).first->second);
    }
    ASSERT_TRUE(link.pumpUntil([this] { return isOpen(); }));
    link.phone().send(channels[NOTIFICATIONS], MESSAGE_GENERIC_NOTIFICATION_SUBSCRIBE,
                      GenericNotificationSubscribe());
    ASSERT_TRUE(link.settles());
  }
  void TearDown() override {
    for (const auto& [service, channel] : channels) link.phone().attach(channel, nullptr);
  }

  bool isOpen() const {
    return std::all_of(streams.begin(), streams.end(), [](const auto& one) { return one->runs(); }) &&
           std::all_of(listeners.begin(), listeners.end(),
                       [](const auto& one) { return one.second.isOpen(); });
  }

  std::future<bool> starts(std::function<bool()> talk) {
    return std::async(std::launch::async, std::move(talk));
  }
  /// The threads of the host, which say messages from `begin` to `end` of each kind.
  std::vector<std::future<bool>> hostTalks(Number begin, Number end) {
    FullHeadUnit* const unit = &link.headUnit();
    std::vector<std::future<bool>> threads;
    for (const int remainder : {0, 1, 2}) {
      threads.push_back(starts([=] {
        for (Number n = begin; n < end; ++n) {
          for (int type = 1 + remainder; type <= SENSOR_TYPES; type += 3)
            reportSensor(&unit->sensors, type, static_cast<int>(n));
        }
        return true;
      }));
    }
    threads.push_back(starts([=] {
      for (Number n = begin; n < end; ++n) {
        reportTouch(&unit->input, n);
        reportKey(&unit->input, n);
      }
      return true;
    }));
    threads.push_back(starts([=] {
      for (Number n = begin; n < end; ++n) unit->data.talks(n);
      return true;
    }));
    threads.push_back(starts([=] { return unit->microphoneHost->speaks(&unit->microphone, end); }));
    return threads;
  }

  void phoneTalks(Number begin, Number end) {
    for (Number n = begin; n < end; ++n) {
      for (const MessageKind& kind : toldByThePhone())
        link.phone().sendMessage(channels.at(kind.service), kind.message(n));
    }
    for (const auto& stream : streams) stream->goesOnTo(end);
    for (int type = 1; type <= SENSOR_TYPES; ++type) {
      SensorRequest request;
      request.set_type(static_cast<SensorType>(type));
      request.set_min_update_period(static_cast<std::int64_t>(end));
      link.phone().send(link.sensorChannel(), MESSAGE_SENSOR_REQUEST, request);
    }
    KeyBindingRequest keys;
    for (const int key : keysOfFullHeadUnit()) keys.add_keycodes(key);
    link.phone().send(link.inputChannel(), MESSAGE_KEY_BINDING_REQUEST, keys);
  }

  bool hasHeard(Number count) const {
    const CarArrivals& car = link.car();
    for (int type = 1; type <= SENSOR_TYPES; ++type) {
      if (car.ofSensor(type).due() < count) return false;
    }
    return car.touches().due() >= count && car.keys().due() >= count && car.speech().due() >= count &&
           std::all_of(streams.begin(), streams.end(),
                       [=](const auto& one) { return one->stats().acknowledged >= count; }) &&
           std::all_of(listeners.begin(), listeners.end(),
                       [=](const auto& one) { return one.second.hasHeard(count); });
  }

  void runsRound(Number begin, Number end) {
    std::vector<std::future<bool>> threads = hostTalks(begin, end);
    phoneTalks(begin, end);
    const bool complete = link.pumpUntil([=] { return hasHeard(end); });
    for (std::future<bool>& thread : threads) EXPECT_TRUE(thread.get());
    EXPECT_TRUE(complete && link.settles());
    expectAll(end);
  }

  void expectAll(Number count) {
    for (const auto& [kind, arrivals] : link.headUnit().data.heard().all()) {
      EXPECT_EQ(arrivals.words(), asDue(count)) << "service " << kind.first << " type " << kind.second;
    }
    for (const auto& [service, listener] : listeners) listener.expect(count);
    for (int sink = VIDEO; sink <= TELEPHONY; ++sink) {
      EXPECT_EQ(link.headUnit().playerOf(sink).played().words(), asDue(count)) << "sink " << sink;
      EXPECT_FALSE(link.headUnit().playerOf(sink).overrun()) << "sink " << sink;
    }
    const CarArrivals& car = link.car();
    for (int type = 0; type <= SENSOR_TYPES; ++type) {
      EXPECT_EQ(car.ofSensor(type).words(), asDue(count)) << "sensor " << type;
    }
    for (const Arrivals* arrivals : {&car.touches(), &car.keys(), &car.speech()}) {
      EXPECT_EQ(arrivals->words(), asDue(count));
    }
    EXPECT_EQ(link.headUnit().microphoneHost->acknowledged(), count);
    EXPECT_FALSE(link.headUnit().microphoneHost->miscounted());
    EXPECT_EQ(link.services().sensors()->stats().granted, SENSOR_TYPES * (1 + count / EACH));
    EXPECT_THAT(link.phone().violations(), testing::IsEmpty());
  }

  FullLink link;
  std::vector<std::unique_ptr<NumberedStream>> streams;
  std::map<int, std::uint8_t> channels;
  std::map<int, Listener> listeners;
};

// As many rounds as are always run, or with VANTRY_SOAK_SECONDS as many as fit into that time.
TEST_F(AllServices, TalkBothWaysAtOnce) {
  const char* const wanted = getenv("VANTRY_SOAK_SECONDS");
  const Clock::time_point end = Clock::now() + std::chrono::seconds(wanted == nullptr ? 0 : atoi(wanted));
  Number rounds = 0;
  while ((rounds < ROUNDS || Clock::now() < end) && !HasFailure()) {
    runsRound(rounds * EACH, (rounds + 1) * EACH);
    ++rounds;
  }
  RecordProperty("rounds", static_cast<int>(rounds));
}

}  // namespace
}  // namespace test
