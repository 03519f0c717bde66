#include "VideoSink.h"

#include "EndpointTest.h"

namespace test {
namespace {

struct VideoSinkTest : EndpointTest {
  shared_ptr<IVideoSinkCallbacks> held;
  MockVideoSinkCallbacks& host = mock<MockVideoSinkCallbacks>(&held);
  VideoSink sink{1, link.router(), held};

  VideoSinkTest() {
    link.registers(&sink);
    link.opens(3, 1);
  }
  ServiceDiscoveryResponse discovery() {
    ServiceDiscoveryResponse response;
    sink.addDiscoveryInfo(&response);
    return response;
  }
};

TEST_F(VideoSinkTest, ConfigurationsAreNumberedInTheOrderAdded) {
  EXPECT_EQ(sink.getNumberOfConfigurations(), 0U);
  EXPECT_EQ(sink.addSupportedConfiguration(3, 60, 0, 0, 160), 0);
  EXPECT_EQ(sink.addSupportedConfiguration(3, 30, 0, 0, 160), 1);
  EXPECT_EQ(sink.getNumberOfConfigurations(), 2U);
}

TEST_F(VideoSinkTest, SixtyFramesASecondAreOneAndEveryOtherNumberIsTwo) {
  for (const int rate : {60, 30, 24, 59, 61, 0, -60}) sink.addSupportedConfiguration(1, rate, 0, 0, 0);
  const ServiceDiscoveryResponse response = discovery();
  std::vector<int> rates;
  for (const VideoConfiguration& offered : response.services(0).media_sink_service().video_configs()) {
    rates.push_back(offered.frame_rate());
  }
  EXPECT_THAT(rates, ElementsAre(1, 2, 2, 2, 2, 2, 2));
}

TEST_F(VideoSinkTest, DiscoveryListsEveryConfigurationWithAllItsFields) {
  sink.addSupportedConfiguration(1, 60, 0, 0, 160);
  sink.addSupportedConfiguration(3, 30, 10, 300, 0);
  EXPECT_EQ(message(MESSAGE_SERVICE_DISCOVERY_RESPONSE, discovery()),
            bytes("00 06"
                  "0A 20"                                // services
                  "08 01"                                // id 1
                  "1A 1C"                                // media_sink_service
                  "08 03"                                // available_type: video
                  "22 0B"                                // video_configs
                  "08 01 10 01 18 00 20 00 28 A0 01"     // 800x480, 60, margins 0, density 160
                  "22 0B"                                // video_configs
                  "08 03 10 02 18 0A 20 AC 02 28 00"));  // 1920x1080, 30, margins 10 and 300, density 0
}

TEST_F(VideoSinkTest, NegativeNumbersOfAConfigurationArriveAsLargeOnes) {
  sink.addSupportedConfiguration(2, 30, -1, -2, -2147483647 - 1);
  EXPECT_EQ(message(MESSAGE_SERVICE_DISCOVERY_RESPONSE, discovery()),
            bytes("00 06"
                  "0A 1E"                 // services
                  "08 01"                 // id 1
                  "1A 1A"                 // media_sink_service
                  "08 03"                 // available_type: video
                  "22 16"                 // video_configs
                  "08 02 10 02"           // 1280x720, 30
                  "18 FF FF FF FF 0F"     // width_margin 4294967295
                  "20 FE FF FF FF 0F"     // height_margin 4294967294
                  "28 80 80 80 80 08"));  // density 2147483648
}

TEST_F(VideoSinkTest, DiscoveryTellsTheCodecThatWasSet) {
  sink.setCodecType(MEDIA_CODEC_4);
  EXPECT_EQ(discovery().services(0).media_sink_service().available_type(), MEDIA_CODEC_4);
}

TEST_F(VideoSinkTest, AllowedConfigurationsDoNotNarrowDiscovery) {
  sink.addSupportedConfiguration(1, 60, 0, 0, 0);
  sink.addSupportedConfiguration(2, 60, 0, 0, 0);
  unsigned int index = 1;
  sink.resetAllowedConfigurations(&index, 1);
  EXPECT_EQ(discovery().services(0).media_sink_service().video_configs_size(), 2);
}

TEST_F(VideoSinkTest, SetupIsToldToTheHostAndThenAnsweredWithConfig) {
  sink.addSupportedConfiguration(1, 60, 0, 0, 0);
  EXPECT_CALL(host, setup(3)).WillOnce([&] {
    EXPECT_THAT(link.sent(3), IsEmpty());
    return STATUS_SUCCESS;
  });
  link.sends(3, bytes("80 00 08 03"));
  EXPECT_THAT(link.sent(3), ElementsAre(bytes("80 03 08 02 10 01 18 00")));
}

TEST_F(VideoSinkTest, TheHostCannotRefuseASetup) {
  sink.setGrantFocusOnSetup(true);
  for (const int result : {int{STATUS_INVALID_STATE}, -1, 1, 2147483647}) {
    EXPECT_CALL(host, setup(3)).WillRepeatedly(Return(result));
    EXPECT_EQ(sink.handleSetup(3), STATUS_SUCCESS) << result;
    EXPECT_THAT(link.sent(3), ElementsAre(bytes("80 03 08 02 10 01"), bytes("80 08 08 01 10 01"))) << result;
  }
}

TEST_F(VideoSinkTest, WhereFocusIsGrantedOnSetupItFollowsConfig) {
  sink.setGrantFocusOnSetup(true);
  link.sends(3, bytes("80 00 08 03"));
  EXPECT_THAT(link.sent(3), ElementsAre(bytes("80 03 08 02 10 01"),
                                        bytes("80 08"      // MESSAGE_VIDEO_FOCUS_NOTIFICATION
                                              "08 01"      // focus 1
                                              "10 01")));  // unsolicited
}

TEST_F(VideoSinkTest, SetupOfAnyOtherCodecIsRefusedWithoutAnAnswerWhateverWasAdvertised) {
  EXPECT_CALL(host, setup).Times(0);
  sink.setGrantFocusOnSetup(true);
  sink.setCodecType(MEDIA_CODEC_1);
  EXPECT_EQ(sink.handleSetup(1), STATUS_INVALID_CONFIGURATION);
  EXPECT_EQ(sink.handleSetup(4), STATUS_INVALID_CONFIGURATION);
  EXPECT_EQ(link.sends(3, bytes("80 00 08 01")), STATUS_SUCCESS);
  EXPECT_THAT(link.sent(3), IsEmpty());
}

TEST_F(VideoSinkTest, FocusIsSentAsOftenAsItIsTold) {
  sink.setVideoFocus(2, false);
  sink.setVideoFocus(2, false);
  sink.setVideoFocus(1, true);
  EXPECT_THAT(link.sent(3), ElementsAre(bytes("80 08 08 02 10 00"), bytes("80 08 08 02 10 00"),
                                        bytes("80 08 08 01 10 01")));
}

TEST_F(VideoSinkTest, FocusOnAClosedChannelIsDropped) {
  link.closes(3);
  sink.setVideoFocus(1, true);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(VideoSinkTest, AFocusRequestIsToldWithItsReason) {
  EXPECT_CALL(host, videoFocusRequest(2, 1));
  link.sends(3, bytes("80 07"
                      "08 05"     // disp_channel_id, which goes no further
                      "10 02"     // mode
                      "18 01"));  // reason
  EXPECT_THAT(link.sent(3), IsEmpty()) << "the host decides";
}

TEST_F(VideoSinkTest, AFocusRequestWithoutAReasonHasReasonZero) {
  EXPECT_CALL(host, videoFocusRequest(2, 0));
  EXPECT_CALL(host, videoFocusRequest(1, 0));
  link.sends(3, bytes("80 07 10 02"));
  link.sends(3, bytes("80 07"));
}

TEST_F(VideoSinkTest, TheHostMayGrantFocusFromInsideTheRequest) {
  EXPECT_CALL(host, videoFocusRequest(1, 0)).WillOnce([&] { sink.setVideoFocus(1, false); });
  link.sends(3, bytes("80 07 10 01"));
  EXPECT_THAT(link.sent(3), ElementsAre(bytes("80 08 08 01 10 00")));
}

TEST_F(VideoSinkTest, AStreamReachesTheHostInOrder) {
  InSequence order;
  EXPECT_CALL(host, mediaConfiguration(4));
  EXPECT_CALL(host, playbackStart(300));
  EXPECT_CALL(host, codecConfig(_, 2)).WillOnce([](void* data, unsigned int length) {
    EXPECT_EQ(Bytes(data, length), bytes("AA BB"));
  });
  EXPECT_CALL(host, dataAvailable(300, 258, _, _, 3))
      .WillOnce([](int, auto, auto& buffer, void* data, auto length) {
        EXPECT_EQ(Bytes(data, length), bytes("01 02 03"));
        EXPECT_EQ(data, buffer->content() + 10);
      });
  EXPECT_CALL(host, playbackStop(300));
  for (const char* message :
       {"80 01 08 AC 02 10 04", "00 01 AA BB", "00 00 00 00 00 00 00 00 01 02 01 02 03", "80 02"}) {
    link.sends(3, bytes(message));
  }
}

TEST_F(VideoSinkTest, AMediaMessageOfTenBytesHasLengthZero) {
  EXPECT_CALL(host, dataAvailable(0, 7, _, _, 0));
  link.sends(3, mediaData(7, {}));
}

TEST_F(VideoSinkTest, AFrameKeptByTheHostOutlivesTheCallUncopied) {
  shared_ptr<IoBuffer> kept;
  void* seen = nullptr;
  EXPECT_CALL(host, dataAvailable).WillOnce([&](int, auto, auto& buffer, void* data, auto) {
    kept = buffer;
    seen = data;
  });
  link.sends(3, mediaData(7, pattern(1000)));
  EXPECT_EQ(Bytes(seen, 1000), pattern(1000));
  EXPECT_EQ(seen, kept->content() + 10);
}

TEST_F(VideoSinkTest, TheHostCannotRefuseAConfiguration) {
  EXPECT_CALL(host, mediaConfiguration(99));
  EXPECT_CALL(host, playbackStart(1));
  EXPECT_EQ(sink.handleMediaConfiguration(99), STATUS_SUCCESS);
  EXPECT_CALL(host, mediaConfiguration(-1));
  link.sends(3, bytes("80 01 08 01 10 FF FF FF FF 0F"));
}

TEST_F(VideoSinkTest, ReleasesItsReferenceToTheCallbacks) {
  int gone = 0;
  struct Mortal : testing::NiceMock<MockVideoSinkCallbacks> {
    explicit Mortal(int* counter) : goneCounter(counter) {}
    ~Mortal() override { ++*goneCounter; }
    int* goneCounter;
  };
  {
    shared_ptr<IVideoSinkCallbacks> callbacks(new Mortal(&gone));
    VideoSink other(2, link.router(), callbacks);
    callbacks = shared_ptr<IVideoSinkCallbacks>();
    EXPECT_EQ(gone, 0);
  }
  EXPECT_EQ(gone, 1);
}

struct ResolutionTest : VideoSinkTest {
  VideoConfiguration configuration;
  int width = -1;
  int height = -1;

  int sizeOf(VideoCodecResolutionType resolution) {
    configuration.set_codec_resolution(resolution);
    return sink.codecResolutionToPixels(configuration, &width, &height);
  }
};

TEST_F(ResolutionTest, TellsItsPixels) {
  EXPECT_EQ(sizeOf(VIDEO_800x480), STATUS_SUCCESS);
  EXPECT_EQ(std::make_pair(width, height), std::make_pair(800, 480));
  EXPECT_EQ(sizeOf(VIDEO_1280x720), STATUS_SUCCESS);
  EXPECT_EQ(std::make_pair(width, height), std::make_pair(1280, 720));
  EXPECT_EQ(sizeOf(VIDEO_1920x1080), STATUS_SUCCESS);
  EXPECT_EQ(std::make_pair(width, height), std::make_pair(1920, 1080));
}

/// Grants a way to what a record keeps to itself: its setter ends the process at a number that is unknown,
/// and its parser leaves it out.
template <auto Member>
struct Way {
  friend auto wayToFields(VideoConfiguration* configuration) { return &(configuration->*Member); }
};
auto wayToFields(VideoConfiguration* configuration);
template struct Way<&VideoConfiguration::_impl_>;

TEST_F(ResolutionTest, LeavesThePixelsAloneWhereItIsUnknown) {
  for (const int unknown : {0, 4, -1}) {
    wayToFields(&configuration)->codec_resolution_ = unknown;
    EXPECT_EQ(sink.codecResolutionToPixels(configuration, &width, &height), STATUS_INVALID_CONFIGURATION);
  }
  EXPECT_EQ(std::make_pair(width, height), std::make_pair(-1, -1));
}

using VideoSinkDeathTest = VideoSinkTest;

TEST_F(VideoSinkDeathTest, ANumberOutsideItsEnumerationStopsTheProcess) {
  EXPECT_DEATH(sink.addSupportedConfiguration(0, 60, 0, 0, 0),
               "::VideoCodecResolutionType_IsValid\\(value\\)");
  EXPECT_DEATH(sink.addSupportedConfiguration(4, 60, 0, 0, 0),
               "::VideoCodecResolutionType_IsValid\\(value\\)");
  EXPECT_DEATH(sink.setVideoFocus(0, false), "::VideoFocusMode_IsValid\\(value\\)");
  EXPECT_DEATH(sink.setVideoFocus(3, false), "::VideoFocusMode_IsValid\\(value\\)");
  sink.setCodecType(5);
  EXPECT_DEATH(discovery(), "::MediaCodecType_IsValid\\(value\\)");
}

}  // namespace
}  // namespace test
