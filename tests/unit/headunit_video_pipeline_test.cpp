#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "headunit/VideoPipeline.h"

namespace headunit {
namespace {

using testing::ElementsAre;

/// Makes a picture as wide as the frame's first byte tells; 0 is a damaged frame.
class SimpleDecoder : public VideoDecoder {
 public:
  explicit SimpleDecoder(std::vector<std::string>* seen) : seen_(seen) {}
  void configure(const CodecConfig& config) override {
    seen_->push_back("config " + std::to_string(config.bytes.size()));
  }
  std::string decode(VideoFrame frame, const OnPicture& onPicture) override {
    seen_->push_back("frame " + std::to_string(frame.data()[0]));
    if (frame.data()[0] == 0) return "nothing in it";
    Picture picture;
    picture.width = frame.data()[0];
    onPicture(std::move(picture));
    return {};
  }
  void finish(const OnPicture&) override { seen_->push_back("finish"); }

 private:
  std::vector<std::string>* const seen_;
};

VideoFrame frameOf(unsigned char content, int session = 7) {
  VideoFrame frame;
  frame.buffer = ::shared_ptr<IoBuffer>(new IoBuffer(1));
  frame.buffer->data[0] = content;
  frame.length = 1;
  frame.session = session;
  return frame;
}

/// A pipeline whose thread has done its work once `finish` has returned.
struct HeadunitVideoPipeline : testing::Test {
  std::vector<std::string> seen;
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
    return std::make_unique<VideoPipeline>(std::make_unique<SimpleDecoder>(&seen), ends(budget));
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
  video->receive(frameOf(0));
  video->finish();
  EXPECT_THAT(acknowledged, ElementsAre(7));
  EXPECT_EQ(stats->totals().damaged, 1U);
  EXPECT_TRUE(video->failingSince());
  EXPECT_GT(changes, 0);
}

TEST_F(HeadunitVideoPipeline, IsAllRightAgainWithTheNextPicture) {
  const auto video = pipeline(&endless);
  video->receive(frameOf(0));
  video->receive(frameOf(9));
  video->finish();
  EXPECT_FALSE(video->failingSince());
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

}  // namespace
}  // namespace headunit
