// Video focus that a host changes on threads of its own, while the reader thread has the channel.

#include <gmock/gmock.h>

#include <algorithm>

#include "LiveLink.h"
#include "LogCapture.h"
#include "ManyThreads.h"

namespace {

using namespace test;

constexpr unsigned int HOSTS = 2;
constexpr int ROUNDS = 150;

/// What the phone is told by each of the host's threads, and by the reader thread.
const Bytes BY_HOST[HOSTS] = {bytes("80 08 08 01 10 01"), bytes("80 08 08 02 10 01")};
const Bytes BY_READER = bytes("80 08 08 01 10 00");

struct HostFocus : testing::Test {
  LiveLink link;
  bool worked = true;  // all that the phone wanted of the link

  HostFocus() {
    link.onFrame = [&] { link.video().setVideoFocus(VIDEO_FOCUS_MODE_1, false); };
    link.start();
    worked = link.comesUp();
  }
  void setOnManyThreadsWhile(const std::function<void()>& meanwhile) {
    onManyThreads(
        HOSTS,
        [this](unsigned int host) {
          for (int round = 0; round < ROUNDS; ++round) {
            link.video().setVideoFocus(VIDEO_FOCUS_MODE_1 + static_cast<int>(host), true);
          }
        },
        meanwhile);
  }
  std::vector<Bytes> told() {
    std::vector<Bytes> result;
    for (const phone::Message& one :
         link.phone().received(LiveLink::VIDEO_CHANNEL, MESSAGE_VIDEO_FOCUS_NOTIFICATION)) {
      result.emplace_back(one.bytes);
    }
    return result;
  }
};

TEST_F(HostFocus, isToldOnceForEachCallWhileTheReaderThreadSetsItToo) {
  unsigned int frames = 0;
  worked = worked && link.opensVideo();
  setOnManyThreadsWhile([&] { worked = worked && link.sendsFrame(pattern(3000, ++frames)); });
  ASSERT_TRUE(worked);
  EXPECT_TRUE(link.pumpUntil([&] { return told().size() >= std::size_t{HOSTS} * ROUNDS + frames; }));
  const std::vector<Bytes> all = told();
  EXPECT_EQ(std::count(all.begin(), all.end(), BY_HOST[0]), ROUNDS);
  EXPECT_EQ(std::count(all.begin(), all.end(), BY_HOST[1]), ROUNDS);
  EXPECT_EQ(std::count(all.begin(), all.end(), BY_READER), frames);
}

TEST_F(HostFocus, survivesAChannelThatClosesAndOpens) {
  worked = worked && link.opensVideo();
  for (int time = 0; time < 10; ++time) {
    setOnManyThreadsWhile([&] {
      link.phone().closeChannel(LiveLink::VIDEO_CHANNEL);
      worked = worked && link.opensVideo() && link.sendsFrame(pattern(100));
    });
  }
  ASSERT_TRUE(worked);
  const Bytes last = bytes("80 08 08 02 10 00");
  link.video().setVideoFocus(VIDEO_FOCUS_MODE_2, false);
  EXPECT_TRUE(link.pumpUntil([&] { return !told().empty() && told().back() == last; }));
  EXPECT_THAT(told(), testing::Each(testing::AnyOf(BY_HOST[0], BY_HOST[1], BY_READER, last)));
}

}  // namespace
