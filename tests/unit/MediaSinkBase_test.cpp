#include "MediaSinkBase.h"

#include "EndpointTest.h"

// What audio and video playback have in common, on the smallest sink that there can be.

namespace test {
namespace {

/// Writes down every handler call.
struct TestSink : MediaSinkBase {
  using MediaSinkBase::MediaSinkBase;

  std::vector<std::string> calls;
  std::vector<Bytes> media;
  unsigned int configurations = 2;
  int setupResult = STATUS_SUCCESS;
  int configurationResult = STATUS_SUCCESS;
  bool takesFocus = true;

  void addDiscoveryInfo(ServiceDiscoveryResponse*) override {}
  int handleSetup(int type) override { return note("setup", type), setupResult; }
  void handleCodecConfig(void* data, unsigned int length) override {
    note("codec config", length);
    media.emplace_back(data, length);
  }
  void handleDataAvailable(unsigned long long timestamp, shared_ptr<IoBuffer> const& buffer,
                           unsigned int offset) override {
    note("data", static_cast<long long>(timestamp));
    EXPECT_EQ(offset, 10U);
    media.emplace_back(buffer->content() + offset, buffer->size() - offset);
  }
  void playbackStart(int session) override { note("start", session); }
  void playbackStop(int session) override { note("stop", session); }
  int handleMediaConfiguration(int index) override {
    return note("configuration", index), configurationResult;
  }
  bool handleVideoFocusRequest(VideoFocusRequestNotification const& request) override {
    return note("focus", request.mode()), takesFocus;
  }
  unsigned int getNumberOfConfigurations() override { return configurations; }

 private:
  void note(const char* name, long long number) { calls.push_back(name + (" " + std::to_string(number))); }
};

struct MediaSinkBaseTest : EndpointTest {
  TestSink sink{1, link.router()};

  MediaSinkBaseTest() {
    link.registers(&sink);
    link.opens(3, 1);
    log.clear();
  }
  int routes(const char* hex) {
    const Bytes content = bytes(hex);
    const shared_ptr<IoBuffer> message =
        link.receiver().allocateBuffer(static_cast<unsigned int>(content.size()));
    std::copy(content.begin(), content.end(), message->data);
    return sink.routeMessage(3, MessageRouter::extractType(message->data), message);
  }
  std::vector<Bytes> config(int status) {
    sink.sendConfig(status);
    return link.sent(3);
  }
  bool allows(std::vector<unsigned int> indices) {
    return sink.resetAllowedConfigurations(indices.data(), static_cast<unsigned int>(indices.size()));
  }
};

TEST_F(MediaSinkBaseTest, ReadsTheTimestampMostSignificantByteFirst) {
  EXPECT_EQ(routes("00 00"                    // MESSAGE_MEDIA_DATA
                   "00 00 00 00 00 00 01 02"  // timestamp
                   "AA BB CC"),               // media
            STATUS_SUCCESS);
  EXPECT_THAT(sink.calls, ElementsAre("data 258"));
  EXPECT_THAT(sink.media, ElementsAre(bytes("AA BB CC")));
}

TEST_F(MediaSinkBaseTest, ATimestampUsesAll64Bits) {
  routes("00 00 FF FF FF FF FF FF FF FE");
  EXPECT_THAT(sink.calls, ElementsAre("data -2"));
}

TEST_F(MediaSinkBaseTest, MediaDataOfOnlyItsPrefixIsDelivered) {
  EXPECT_EQ(routes("00 00 00 00 00 00 00 00 00 07"), STATUS_SUCCESS);
  EXPECT_THAT(sink.media, ElementsAre(bytes("")));
}

TEST_F(MediaSinkBaseTest, MediaDataShorterThanItsPrefixIsRefusedAndTheLinkLives) {
  const Bytes whole = bytes("00 00 01 02 03 04 05 06 07 08");
  for (std::size_t size = 2; size < whole.size(); ++size) {
    EXPECT_EQ(link.sends(3, part(whole, 0, size)), STATUS_SUCCESS);
    EXPECT_THAT(link.sent(3), ElementsAre(unexpectedMessage())) << size;
  }
  EXPECT_THAT(sink.calls, IsEmpty());
  EXPECT_EQ(log.debug().size(), 8U);
  EXPECT_THAT(log.debug(), testing::Each(parseFailureIn("MediaSinkBase")));
}

TEST_F(MediaSinkBaseTest, CodecConfigurationFollowsTheTypeDirectly) {
  EXPECT_EQ(routes("00 01 AA BB CC"), STATUS_SUCCESS);
  EXPECT_EQ(routes("00 01"), STATUS_SUCCESS);
  EXPECT_THAT(sink.calls, ElementsAre("codec config 3", "codec config 0"));
  EXPECT_THAT(sink.media, ElementsAre(bytes("AA BB CC"), bytes("")));
}

TEST_F(MediaSinkBaseTest, SetupGivesTheResultOfItsHandler) {
  EXPECT_EQ(routes("80 00 08 02"), STATUS_SUCCESS);
  sink.setupResult = STATUS_INVALID_CONFIGURATION;
  EXPECT_EQ(routes("80 00 08 04"), STATUS_INVALID_CONFIGURATION);
  EXPECT_THAT(sink.calls, ElementsAre("setup 2", "setup 4"));
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(MediaSinkBaseTest, StartTellsTheConfigurationBeforeThePlayback) {
  EXPECT_EQ(routes("80 01"     // MESSAGE_START
                   "08 AC 02"  // session_id 300
                   "10 09"),   // configuration_index 9, which nobody offered
            STATUS_SUCCESS);
  EXPECT_THAT(sink.calls, ElementsAre("configuration 9", "start 300"));
}

TEST_F(MediaSinkBaseTest, ARefusedConfigurationKeepsTheNewSessionAndStartsNothing) {
  sink.configurationResult = STATUS_INVALID_CONFIGURATION;
  EXPECT_EQ(routes("80 01 08 07 10 00"), STATUS_INVALID_CONFIGURATION);
  EXPECT_EQ(routes("80 02"), STATUS_SUCCESS);
  EXPECT_THAT(sink.calls, ElementsAre("configuration 0", "stop 7"));
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(MediaSinkBaseTest, ASecondStartReplacesTheSession) {
  routes("80 01 08 01 10 00");
  routes("80 01 08 02 10 01");
  routes("80 02");
  EXPECT_THAT(sink.calls, ElementsAre("configuration 0", "start 1", "configuration 1", "start 2", "stop 2"));
}

TEST_F(MediaSinkBaseTest, StopTwiceStopsTheSameSessionTwice) {
  routes("80 01 08 05 10 00");
  routes("80 02");
  routes("80 02");
  EXPECT_THAT(sink.calls, ElementsAre("configuration 0", "start 5", "stop 5", "stop 5"));
}

TEST_F(MediaSinkBaseTest, NoOrderAmongMessagesIsEnforced) {
  EXPECT_EQ(routes("80 02"), STATUS_SUCCESS);
  EXPECT_EQ(routes("00 00 00 00 00 00 00 00 00 01"), STATUS_SUCCESS);
  EXPECT_THAT(sink.calls, ElementsAre("stop 0", "data 1"));
}

TEST_F(MediaSinkBaseTest, AFocusRequestIsUnexpectedUnlessItIsTaken) {
  EXPECT_EQ(routes("80 07 10 02"), STATUS_SUCCESS);
  sink.takesFocus = false;
  EXPECT_EQ(routes("80 07 10 02"), STATUS_UNEXPECTED_MESSAGE);
  EXPECT_THAT(sink.calls, ElementsAre("focus 2", "focus 2"));
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(MediaSinkBaseTest, AnUnparsableRecordIsLoggedAndItsHandlerNotCalled) {
  const char* const damaged[] = {"80 00",       "80 00 08 09", "80 01 08 01",
                                 "80 01 10 01", "80 02 FF",    "80 07 FF"};
  for (const char* message : damaged) EXPECT_EQ(routes(message), STATUS_UNEXPECTED_MESSAGE) << message;
  EXPECT_THAT(sink.calls, IsEmpty());
  EXPECT_THAT(log.critical(), IsEmpty());
  EXPECT_EQ(log.debug().size(), std::size(damaged));
  EXPECT_THAT(log.debug(), testing::Each(parseFailureIn("MediaSinkBase")));
}

TEST_F(MediaSinkBaseTest, EveryOtherTypeIsLoggedAndUnexpected) {
  EXPECT_EQ(routes("00 02"), STATUS_UNEXPECTED_MESSAGE);
  EXPECT_EQ(routes("80 03 08 02"), STATUS_UNEXPECTED_MESSAGE);        // MESSAGE_CONFIG
  EXPECT_EQ(routes("80 04 08 01 10 01"), STATUS_UNEXPECTED_MESSAGE);  // MESSAGE_ACK
  EXPECT_EQ(routes("80 08"), STATUS_UNEXPECTED_MESSAGE);              // MESSAGE_VIDEO_FOCUS_NOTIFICATION
  EXPECT_EQ(routes("FF FF 00"), STATUS_UNEXPECTED_MESSAGE);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Failed to dispatch message of type 2 size=2",
                                     "critical [LHU] Failed to dispatch message of type 32771 size=4",
                                     "critical [LHU] Failed to dispatch message of type 32772 size=6",
                                     "critical [LHU] Failed to dispatch message of type 32776 size=2",
                                     "critical [LHU] Failed to dispatch message of type 65535 size=3"));
}

TEST_F(MediaSinkBaseTest, TheLineOfAnUnknownTypeTellsTheSizeOfTheMessageAndNotOfItsBuffer) {
  link.sends(3, bytes("80 03 08 02"));  // which stands behind the header of its frame
  EXPECT_THAT(log.critical(), ElementsAre("[LHU] Failed to dispatch message of type 32771 size=4",
                                          "[LHU] Sending unexpected message on channel 3"));
}

TEST_F(MediaSinkBaseTest, AClosedChannelStopsNoPlayback) {
  routes("80 01 08 05 10 00");
  link.closes(3);
  EXPECT_THAT(sink.calls, ElementsAre("configuration 0", "start 5"));
}

TEST_F(MediaSinkBaseTest, AnAcknowledgementNamesItsSessionAndCount) {
  EXPECT_FALSE(sink.ackFrames(300, 2)) << "false where it was queued";
  EXPECT_THAT(link.sent(3), ElementsAre(bytes("80 04"      // MESSAGE_ACK
                                              "08 AC 02"   // session_id 300
                                              "10 02")));  // ack 2
}

TEST_F(MediaSinkBaseTest, AnAcknowledgementOnAClosedChannelIsDroppedAndFalseToo) {
  link.closes(3);
  EXPECT_FALSE(sink.ackFrames(1, 1));
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(MediaSinkBaseTest, OnlyAFailedQueueingIsTrue) {
  link.channels().unregisterChannel(3);
  EXPECT_TRUE(sink.ackFrames(1, 1));
}

TEST_F(MediaSinkBaseTest, ConfigListsAllConfigurationsUnpackedAndAscending) {
  sink.configurations = 3;
  sink.setMaxUnacked(200);
  EXPECT_THAT(config(2), ElementsAre(bytes("80 03"                  // MESSAGE_CONFIG
                                           "08 02"                  // STATUS_READY
                                           "10 C8 01"               // max_unacked 200
                                           "18 00 18 01 18 02")));  // configuration_indices
}

TEST_F(MediaSinkBaseTest, ConfigWithoutConfigurationsIsStillSent) {
  sink.configurations = 0;
  EXPECT_THAT(config(1), ElementsAre(bytes("80 03 08 01 10 01")));
}

TEST_F(MediaSinkBaseTest, ConfigOnAClosedChannelIsDropped) {
  link.closes(3);
  EXPECT_THAT(config(2), IsEmpty());
}

TEST_F(MediaSinkBaseTest, ANarrowedListKeepsItsOrderAndSendsNothingByItself) {
  sink.configurations = 3;
  EXPECT_TRUE(allows({2, 0}));
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(config(2), ElementsAre(bytes("80 03 08 02 10 01 18 02 18 00")));
}

TEST_F(MediaSinkBaseTest, AnEmptyListAllowsAllAgain) {
  allows({1});
  EXPECT_TRUE(allows({}));
  EXPECT_THAT(config(2), ElementsAre(bytes("80 03 08 02 10 01 18 00 18 01")));
}

TEST_F(MediaSinkBaseTest, AnEmptyListIsFineOnASinkWithoutConfigurations) {
  sink.configurations = 0;
  EXPECT_TRUE(sink.resetAllowedConfigurations(nullptr, 0));
}

TEST_F(MediaSinkBaseTest, AnIndexOutOfRangeIsRefusedAndLeavesTheListUnchanged) {
  allows({1});
  EXPECT_FALSE(allows({2, 2}));
  EXPECT_FALSE(allows({0, 2}));
  EXPECT_THAT(config(2), ElementsAre(bytes("80 03 08 02 10 01 18 01")));
}

TEST_F(MediaSinkBaseTest, ARepeatedIndexIsKept) {
  EXPECT_TRUE(allows({1, 1}));
  EXPECT_THAT(config(2), ElementsAre(bytes("80 03 08 02 10 01 18 01 18 01")));
}

TEST_F(MediaSinkBaseTest, MoreEntriesThanConfigurationsAreRefusedEvenIfRepeated) {
  EXPECT_FALSE(allows({0, 1, 0}));
  EXPECT_THAT(config(2), ElementsAre(bytes("80 03 08 02 10 01 18 00 18 01")));
}

using MediaSinkBaseDeathTest = MediaSinkBaseTest;

TEST_F(MediaSinkBaseDeathTest, AConfigStatusThatIsNoneStopsTheProcess) {
  EXPECT_DEATH(sink.sendConfig(0), "::Config_Status_IsValid\\(value\\)");
  EXPECT_DEATH(sink.sendConfig(3), "::Config_Status_IsValid\\(value\\)");
}

}  // namespace
}  // namespace test
