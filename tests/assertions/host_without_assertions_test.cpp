// A host compiled without assertions. What it inlines has none; the library keeps its own all the same.

#include <gtest/gtest.h>

#include "VantryReceiver.h"
#include "VideoSink.h"

namespace {

struct HostWithoutAssertionsDeathTest : testing::Test {
  VantryReceiver receiver;
  HostWithoutAssertionsDeathTest() { receiver.init(shared_ptr<IControllerCallbacks>()); }
  ~HostWithoutAssertionsDeathTest() override { receiver.shutdown(); }
};

// Also what has the host hold copies of these setters.
TEST_F(HostWithoutAssertionsDeathTest, SetsWhatItLikesInRecordsOfItsOwn) {
  VideoConfiguration configuration;
  configuration.set_codec_resolution(static_cast<VideoCodecResolutionType>(0));
  EXPECT_EQ(configuration.codec_resolution(), 0);
  VideoFocusNotification notification;
  notification.set_focus(static_cast<VideoFocusMode>(3));
  EXPECT_EQ(notification.focus(), 3);
  MediaSinkService service;
  service.set_available_type(static_cast<MediaCodecType>(5));
  EXPECT_EQ(service.available_type(), 5);
}

TEST_F(HostWithoutAssertionsDeathTest, IsStoppedByTheLibraryAtANumberOutsideItsEnumeration) {
  VideoSink video(1, receiver.messageRouter(), shared_ptr<IVideoSinkCallbacks>());
  EXPECT_DEATH(video.addSupportedConfiguration(0, 60, 0, 0, 0),
               "::VideoCodecResolutionType_IsValid\\(value\\)");
  EXPECT_DEATH(video.setVideoFocus(3, false), "::VideoFocusMode_IsValid\\(value\\)");
  video.setCodecType(5);
  ServiceDiscoveryResponse response;
  EXPECT_DEATH(video.addDiscoveryInfo(&response), "::MediaCodecType_IsValid\\(value\\)");
}

}  // namespace
