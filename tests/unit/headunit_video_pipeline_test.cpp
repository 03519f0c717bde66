#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "headunit/VideoCallbacks.h"
#include "headunit/VideoPipeline.h"

namespace headunit {
namespace {

using testing::ElementsAre;

constexpr unsigned char THROWS = 255;

/// Makes a picture as wide as the frame's first byte tells; 0 is a damaged frame, and THROWS one for which
/// there is no memory.
class SimpleDecoder : public VideoDecoder {
 public:
  SimpleDecoder(std::vector<std::string>* seen, std::vector<std::string> atEnd)
      : seen_(seen), atEnd_(std::move(atEnd)) {}
  void configure(const CodecConfig& config) override {
    seen_->push_back("config " + std::to_string(config.bytes.size()));
  }
  std::string decode(VideoFrame frame, const OnPicture& onPicture) override {
    seen_->push_back("frame " + std::to_string(frame.data()[0]));
    if (frame.data()[0] == 0) return "nothing in it";
    if (frame.data()[0] == THROWS) throw std::bad_alloc();
    Picture picture;
    picture.width = frame.data()[0];
    onPicture(std::move(picture));
    return {};
  }
  std::vector<std::string> finish(const OnPicture&) override {
    seen_->push_back("finish");
    return atEnd_;
  }

 private:
  std::vector<std::string>* const seen_;
  const std::vector<std::string> atEnd_;
};

constexpr unsigned char DAMAGED = 0;

VideoFrame frameOf(unsigned char content, int session = 7) {
  VideoFrame frame;
  frame.buffer = ::shared_ptr<IoBuffer>(new IoBuffer(1));
  frame.buffer->data[0] = content;
  frame.length = 1;
  frame.session = session;
  return frame;
}

VideoFrame damagedAt(milliseconds time) {
  VideoFrame frame = frameOf(DAMAGED);
  frame.times.received = TimePoint(std::chrono::seconds(1000) + time);
  return frame;
}

/// A pipeline whose thread has done its work once `finish` has returned.
struct HeadunitVideoPipeline : testing::Test {
  std::vector<std::string> seen;
  std::vector<std::string> faultsAtEnd;
  std::vector<int> acknowledged;
  PictureSlot slot;
  std::shared_ptr<LinkStats> stats = std::make_shared<LinkStats>(Clock::now());
  FrameBudget endless{0};
  std::atomic<int> changes{0};

  VideoPipeline::Ends ends(FrameBudget* budget) {
    return {
        [this](int session, unsigned int count) { acknowledged.insert(acknowledged.end(), count, session); },
        [this] { ++changes; }, &slot, budget, stats};
  }
  std::unique_ptr<VideoPipeline> pipeline(FrameBudget* budget) {
    return std::make_unique<VideoPipeline>(std::make_unique<SimpleDecoder>(&seen, faultsAtEnd), ends(budget));
  }
};

TEST_F(HeadunitVideoPipeline, DecodesInOrderAndAcknowledgesEachFrame) {
  const auto video = pipeline(&endless);
  video->configure({{1, 2, 3}});
  video->receive(frameOf(10, 4));
  video->receive(frameOf(20, 5));
  video->finish();
  EXPECT_THAT(seen, ElementsAre("config 3", "frame 10", "frame 20", "finish"));
  EXPECT_THAT(acknowledged, ElementsAre(4, 5));
  EXPECT_EQ(slot.take()->width, 20);
  EXPECT_EQ(stats->totals().frames, 2U);
  EXPECT_EQ(stats->totals().decoded, 2U);
  EXPECT_EQ(stats->totals().dropped, 1U);
}

TEST_F(HeadunitVideoPipeline, AcknowledgesWhatCannotBeDecoded) {
  const auto video = pipeline(&endless);
  video->receive(frameOf(DAMAGED));
  video->finish();
  EXPECT_THAT(acknowledged, ElementsAre(7));
  EXPECT_EQ(stats->totals().damaged, 1U);
  EXPECT_GT(changes, 0);
}

TEST_F(HeadunitVideoPipeline, CountsWhatIsFoundDamagedAtTheEnd) {
  faultsAtEnd = {"parts are missing", "parts are missing"};
  const auto video = pipeline(&endless);
  video->receive(frameOf(10));
  video->finish();
  EXPECT_EQ(stats->totals().damaged, 2U);
  EXPECT_EQ(video->failingFor(), milliseconds(0));
}

TEST_F(HeadunitVideoPipeline, FailsForAsLongAsDamagedFramesKeepComing) {
  const auto video = pipeline(&endless);
  for (const int time : {0, 1500, 4000}) video->receive(damagedAt(milliseconds(time)));
  video->finish();
  EXPECT_EQ(video->failingFor(), milliseconds(4000));
}

TEST_F(HeadunitVideoPipeline, DoesNotFailForOneDamagedFrameHoweverLongItIsTheLast) {
  const auto video = pipeline(&endless);
  video->receive(frameOf(9));
  video->receive(damagedAt(milliseconds(0)));
  video->finish();
  EXPECT_EQ(video->failingFor(), milliseconds(0));
  EXPECT_GT(changes, 0);
}

TEST_F(HeadunitVideoPipeline, IsAllRightAgainWithTheNextPicture) {
  const auto video = pipeline(&endless);
  video->receive(damagedAt(milliseconds(0)));
  video->receive(damagedAt(milliseconds(4000)));
  video->receive(frameOf(9));
  video->finish();
  EXPECT_EQ(video->failingFor(), milliseconds(0));
}

TEST_F(HeadunitVideoPipeline, FailsAnewBehindAPicture) {
  const auto video = pipeline(&endless);
  video->receive(damagedAt(milliseconds(0)));
  video->receive(frameOf(9));
  video->receive(damagedAt(milliseconds(4000)));
  video->receive(damagedAt(milliseconds(4001)));
  video->finish();
  EXPECT_EQ(video->failingFor(), milliseconds(1));
}

TEST_F(HeadunitVideoPipeline, ForgetsWhatWasWrongWhenItsStreamStartsOrStops) {
  const auto video = pipeline(&endless);
  VideoCallbacks callbacks(video.get(), nullptr);
  video->receive(damagedAt(milliseconds(0)));
  callbacks.playbackStop(1);
  video->receive(damagedAt(milliseconds(10'000)));
  callbacks.playbackStart(1);
  video->receive(damagedAt(milliseconds(20'000)));
  video->receive(damagedAt(milliseconds(20'003)));
  video->finish();
  EXPECT_EQ(video->failingFor(), milliseconds(3));
}

TEST_F(HeadunitVideoPipeline, ShowsNoMoreThanTheBudget) {
  FrameBudget two(2);
  const auto video = pipeline(&two);
  for (unsigned char i = 1; i <= 5; ++i) video->receive(frameOf(i));
  video->finish();
  EXPECT_EQ(slot.take()->width, 2) << "the last picture is the last of the budget";
  EXPECT_EQ(acknowledged.size(), 5U) << "the phone is not held up";
  EXPECT_TRUE(two.exhausted());
  EXPECT_GT(changes, 0);
}

TEST_F(HeadunitVideoPipeline, RefusesAFrameThatIsTooLongAndAcknowledgesIt) {
  const auto video = pipeline(&endless);
  VideoFrame frame = frameOf(1);
  frame.length = 0x8000'0000;  // as announced; there is no such thing in the buffer
  video->receive(std::move(frame));
  video->receive(frameOf(2));
  video->finish();
  EXPECT_THAT(seen, ElementsAre("frame 2", "finish"));
  EXPECT_THAT(acknowledged, ElementsAre(7, 7));
  EXPECT_EQ(stats->totals().refused, 1U);
}

TEST_F(HeadunitVideoPipeline, OutlivesADecoderThatThrows) {
  const auto video = pipeline(&endless);
  video->receive(frameOf(THROWS));
  video->receive(frameOf(2));
  video->finish();
  EXPECT_THAT(seen, ElementsAre("frame 255", "frame 2", "finish"));
  EXPECT_THAT(acknowledged, ElementsAre(7, 7));
  EXPECT_EQ(stats->totals().damaged, 1U);
}

TEST_F(HeadunitVideoPipeline, DecodesNoMoreOnceAbandoned) {
  std::promise<void> go;
  std::promise<void> begun;
  auto limits = ends(&endless);
  limits.acknowledge = [&, first = true](int session, unsigned int) mutable {
    acknowledged.push_back(session);
    if (!std::exchange(first, false)) return;
    begun.set_value();
    go.get_future().wait();
  };
  VideoPipeline video(std::make_unique<SimpleDecoder>(&seen, faultsAtEnd), limits);
  video.receive(frameOf(1));
  begun.get_future().wait();
  video.configure({{1}});
  video.receive(frameOf(2));
  video.receive(frameOf(3));
  std::thread ending([&video] { video.abandon(); });
  while (stats->totals().refused < 2) std::this_thread::yield();  // the decoder is still busy with the first
  go.set_value();
  ending.join();
  EXPECT_THAT(seen, ElementsAre("frame 1", "finish"));
  EXPECT_THAT(acknowledged, ElementsAre(7));
}

TEST(HeadunitVideoQueue, HoldsSoManyItemsAndSoManyBytes) {
  VideoQueue queue({3, 10});
  const auto config = [](std::size_t bytes) { return CodecConfig{std::vector<std::uint8_t>(bytes)}; };
  EXPECT_TRUE(queue.push(config(9)));
  EXPECT_FALSE(queue.push(config(2)));
  EXPECT_TRUE(queue.push(frameOf(1)));
  EXPECT_FALSE(queue.push(frameOf(1)));
  EXPECT_TRUE(queue.push(config(0)));
  EXPECT_FALSE(queue.push(config(0)));
  VideoItem item;
  ASSERT_TRUE(queue.pop(&item));
  EXPECT_TRUE(queue.push(config(9))) << "what has been taken counts no more";
}

TEST(HeadunitVideoQueue, TellsHowManyFramesItDrops) {
  VideoQueue queue({9, 100});
  queue.push(CodecConfig());
  queue.push(frameOf(1));
  queue.push(frameOf(2));
  EXPECT_EQ(queue.drop(), 2U);
  VideoItem item;
  EXPECT_FALSE(queue.pop(&item));
  EXPECT_FALSE(queue.push(frameOf(3)));
}

TEST_F(HeadunitVideoPipeline, TakesNothingAfterTheEnd) {
  const auto video = pipeline(&endless);
  video->finish();
  video->receive(frameOf(1));
  EXPECT_THAT(seen, ElementsAre("finish"));
  EXPECT_EQ(stats->totals().refused, 1U);
}

TEST(HeadunitVideoFrame, IsPaddedWithZerosAndKeepsItsBytes) {
  VideoFrame frame;
  frame.buffer = ::shared_ptr<IoBuffer>(new IoBuffer(100));
  for (unsigned char i = 0; i < 100; ++i) frame.buffer->data[i] = i;
  frame.offset = 10;
  frame.length = 90;
  padWithZeros(&frame, 64);
  ASSERT_GE(frame.buffer->capacity, 164U);
  EXPECT_EQ(frame.data()[0], 10);
  EXPECT_EQ(frame.data()[89], 99);
  for (unsigned int i = 90; i < 154; ++i) EXPECT_EQ(frame.data()[i], 0);
  EXPECT_EQ(frame.buffer->size(), 100U) << "the content stays what it was";
}

TEST(HeadunitVideoFrame, IsNotPaddedBeyondWhatABufferCanBe) {
  VideoFrame frame;
  frame.buffer = ::shared_ptr<IoBuffer>(new IoBuffer(100));
  frame.length = 0xFFFF'FFF0;  // its end and the padding are more than 32 bits can tell
  EXPECT_THROW(padWithZeros(&frame, 64), std::bad_alloc);
  EXPECT_EQ(frame.buffer->capacity, 100U);
}

}  // namespace
}  // namespace headunit
