#include "phone/Discovery.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using phone::chooseVideo;

void offer(MediaSinkService* sink, VideoCodecResolutionType resolution, VideoFrameRateType rate) {
  VideoConfiguration* added = sink->add_video_configs();
  added->set_codec_resolution(resolution);
  added->set_frame_rate(rate);
}

struct PhoneDiscovery : testing::Test {
  MediaSinkService sink;
  PhoneDiscovery() {
    offer(&sink, VIDEO_800x480, VIDEO_FPS_30);
    offer(&sink, VIDEO_1280x720, VIDEO_FPS_30);
    offer(&sink, VIDEO_1280x720, VIDEO_FPS_60);
  }
};

TEST_F(PhoneDiscovery, ChoosesBySizeAndFrameRate) {
  EXPECT_EQ(chooseVideo(sink, {0, 1, 2}, {1280, 720}, 60), 2u);
  EXPECT_EQ(chooseVideo(sink, {0, 1, 2}, {1280, 720}, 30), 1u);
}

TEST_F(PhoneDiscovery, ChoosesBySizeWhereNoFrameRateFits) {
  EXPECT_EQ(chooseVideo(sink, {0, 2}, {1280, 720}, 30), 2u);
}

TEST_F(PhoneDiscovery, ChoosesTheFirstAllowedWhereNoSizeFits) {
  EXPECT_EQ(chooseVideo(sink, {2, 0}, {1920, 1080}, 30), 2u);
}

TEST_F(PhoneDiscovery, IgnoresIndicesThatNameNothing) {
  EXPECT_EQ(chooseVideo(sink, {3, 4000000000, 1}, {800, 480}, 30), 1u);
  EXPECT_EQ(chooseVideo(sink, {3}, {800, 480}, 30), std::nullopt);
  EXPECT_EQ(chooseVideo(sink, {}, {800, 480}, 30), std::nullopt);
}

TEST_F(PhoneDiscovery, FindsTheSinkThatTakesPictures) {
  ServiceDiscoveryResponse services;
  EXPECT_EQ(phone::findVideoSink(services), nullptr);
  services.add_services()->set_id(1);
  Service* sound = services.add_services();
  sound->set_id(2);
  sound->mutable_media_sink_service()->add_audio_configs();
  EXPECT_EQ(phone::findVideoSink(services), nullptr);
  Service* picture = services.add_services();
  picture->set_id(3);
  *picture->mutable_media_sink_service() = sink;
  EXPECT_EQ(phone::findVideoSink(services)->id(), 3);
}

TEST_F(PhoneDiscovery, AResolutionStandsForASize) {
  EXPECT_TRUE(phone::sizeOf(VIDEO_800x480) == (phone::PictureSize{800, 480}));
  EXPECT_TRUE(phone::sizeOf(VIDEO_1280x720) == (phone::PictureSize{1280, 720}));
  EXPECT_TRUE(phone::sizeOf(VIDEO_1920x1080) == (phone::PictureSize{1920, 1080}));
}

}  // namespace
}  // namespace test
