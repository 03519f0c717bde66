#include "EndpointTest.h"
#include "VideoSink.h"

// The fixture itself, on a real service.

namespace test {
namespace {

struct EndpointFixtureTest : EndpointTest {
  shared_ptr<IVideoSinkCallbacks> held;
  MockVideoSinkCallbacks& host = mock<MockVideoSinkCallbacks>(&held);
  VideoSink sink{1, link.router(), held};
  EndpointFixtureTest() { link.registers(&sink); }
};

TEST_F(EndpointFixtureTest, OpensSendsAndSeesTheAnswer) {
  EXPECT_EQ(link.opens(3, 1), STATUS_SUCCESS);
  EXPECT_CALL(host, setup(3));
  link.sends(3, MESSAGE_SETUP, bytes("08 03"));
  EXPECT_THAT(link.sent(3), ElementsAre(bytes("80 03"      // MESSAGE_CONFIG
                                              "08 02"      // status: ready
                                              "10 01")));  // max_unacked 1
  EXPECT_THAT(link.sent(3), IsEmpty());
}

TEST_F(EndpointFixtureTest, TellsOfARefusalThatNeverLeaves) {
  EXPECT_EQ(link.opens(3, 77), -1);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(EndpointFixtureTest, ClosesAChannel) {
  link.opens(3, 1);
  EXPECT_EQ(link.closes(3), STATUS_SUCCESS);
  EXPECT_FALSE(sink.isChannelOpen());
}

TEST_F(EndpointFixtureTest, JoinsTheFragmentsOfALongMessageBothWays) {
  link.opens(3, 1);
  const Bytes media = pattern(40000);
  Bytes arrived;
  ON_CALL(host, dataAvailable)
      .WillByDefault([&](int, unsigned long long, auto&, void* data, unsigned int length) {
        arrived = Bytes(data, length);
      });
  link.sends(3, mediaData(1, media));
  EXPECT_EQ(arrived, media);

  Bytes answer = message(0x8003, media);
  link.router()->queueOutgoing(3, answer.data(), static_cast<unsigned int>(answer.size()));
  EXPECT_THAT(link.sent(3), ElementsAre(answer));
}

}  // namespace
}  // namespace test
