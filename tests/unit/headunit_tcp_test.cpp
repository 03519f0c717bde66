#include <VantryReceiver.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "headunit/Tcp.h"
#include "headunit/TcpTransport.h"

namespace headunit {
namespace {

using testing::HasSubstr;

constexpr milliseconds LIMIT(5000);

TEST(HeadunitTcp, ReadsAddresses) {
  EXPECT_EQ(parseAddress("127.0.0.1:7411")->words(), "127.0.0.1:7411");
  EXPECT_EQ(parseAddress("[::1]:0")->host, "::1");
  EXPECT_EQ(parseAddress("[::1]:0")->words(), "[::1]:0");
  EXPECT_EQ(parseAddress("car:65535")->port, 65535);
}

TEST(HeadunitTcp, RefusesWhatIsNoAddress) {
  for (const char* const text :
       {"", "7411", ":7411", "car:", "car:x", "car:65536", "car:-1", "car:7411 ", "::1:7411", "[]:1"}) {
    EXPECT_FALSE(parseAddress(text)) << text;
  }
}

TEST(HeadunitTcp, SaysThatAPortIsTaken) {
  std::string error;
  const FileDescriptor first = listenOn({"127.0.0.1", 0}, &error);
  ASSERT_TRUE(first) << error;
  EXPECT_NE(localAddress(first).port, 0);
  EXPECT_FALSE(listenOn(localAddress(first), &error));
  EXPECT_EQ(error, "another program is using that port");
}

TEST(HeadunitTcp, ConnectsAndAccepts) {
  std::string error;
  const FileDescriptor listener = listenOn({"127.0.0.1", 0}, &error);
  WakeEvent never;
  NoConnection why;
  const FileDescriptor near = connectTo(localAddress(listener), LIMIT, never, &why);
  ASSERT_TRUE(near) << why.reason;
  pollfd waiting{listener.get(), POLLIN, 0};
  ASSERT_EQ(poll(&waiting, 1, -1), 1);
  Address peer;
  EXPECT_TRUE(acceptFrom(listener, &peer));
  EXPECT_EQ(peer.words(), localAddress(near).words());
  EXPECT_FALSE(acceptFrom(listener, &peer)) << "there is only one";
}

TEST(HeadunitTcp, KnowsThatAPeerHasGoneWhateverItHasSent) {
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
  const FileDescriptor near(ends[0]);
  FileDescriptor far(ends[1]);
  EXPECT_FALSE(hasGone(near));
  ASSERT_EQ(write(far.get(), "hello", 5), 5);
  EXPECT_FALSE(hasGone(near));
  far.close();
  EXPECT_TRUE(hasGone(near));
}

TEST(HeadunitTcp, SaysThatNobodyListens) {
  std::string error;
  Address address;
  {
    const FileDescriptor shortLived = listenOn({"127.0.0.1", 0}, &error);
    address = localAddress(shortLived);
  }
  WakeEvent never;
  NoConnection why;
  EXPECT_FALSE(connectTo(address, LIMIT, never, &why));
  EXPECT_EQ(why.reason, "nobody listens there");
  EXPECT_FALSE(why.hostUnknown);
}

TEST(HeadunitTcp, SaysThatAHostIsUnknown) {
  std::string error;
  EXPECT_FALSE(listenOn({"no such host", 1}, &error));
  EXPECT_THAT(error, HasSubstr("the host 'no such host' is not known"));
  WakeEvent never;
  NoConnection why;
  EXPECT_FALSE(connectTo({"no such host", 1}, LIMIT, never, &why));
  EXPECT_THAT(why.reason, HasSubstr("the host 'no such host' is not known"));
  EXPECT_TRUE(why.hostUnknown);
}

/// A transport over one end of a socket pair, without its threads.
class HeadunitTcpTransport : public testing::Test {
 protected:
  HeadunitTcpTransport() {
    int ends[2];
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
    far = FileDescriptor(ends[1]);
    transport = std::make_unique<TcpTransport>(&receiver, FileDescriptor(ends[0]), [this] { ++stops; });
  }

  int transfer(bool reading) {
    char byte = 'x';
    return reading ? transport->read(&byte, 1) : transport->write(&byte, 1);
  }

  VantryReceiver receiver;
  FileDescriptor far;
  std::atomic<int> stops{0};
  std::unique_ptr<TcpTransport> transport;
};

TEST_F(HeadunitTcpTransport, MovesBytesBothWays) {
  EXPECT_EQ(write(far.get(), "hello", 5), 5);
  char text[16];
  EXPECT_EQ(transport->read(text, sizeof text), 5);
  EXPECT_EQ(std::string(text, 5), "hello");
  char answer[] = "hi";
  EXPECT_EQ(transport->write(answer, 2), 2);
  EXPECT_EQ(::read(far.get(), text, sizeof text), 2);
  EXPECT_EQ(transport->bytesRead(), 5U);
  EXPECT_EQ(transport->bytesWritten(), 2U);
  EXPECT_EQ(transport->brokenBy(), "");
}

TEST_F(HeadunitTcpTransport, StopEndsAReadThatIsBlocked) {
  std::thread reader([this] {
    char byte = 0;
    EXPECT_FALSE(transport->readOrFail(&byte, 1));
  });
  transport->requestStop();
  reader.join();
  EXPECT_EQ(stops, 1);
  EXPECT_EQ(transport->brokenBy(), "") << "a stop is no breakdown";
}

TEST_F(HeadunitTcpTransport, StopEndsAWriteThatIsBlocked) {
  std::thread writer([this] {
    std::string much(16 << 20, 'x');
    EXPECT_FALSE(transport->writeOrFail(much.data(), static_cast<unsigned int>(much.size())));
  });
  while (transport->bytesWritten() == 0) std::this_thread::yield();
  transport->requestStop();
  writer.join();
}

TEST_F(HeadunitTcpTransport, TransfersAfterAStopReturnAtOnce) {
  transport->requestStop();
  EXPECT_EQ(transfer(true), -2);
  EXPECT_EQ(transfer(false), -2);
}

TEST_F(HeadunitTcpTransport, APeerThatGoesAwayIsToldApartFromAStop) {
  far.close();
  EXPECT_EQ(transfer(true), -1);
  EXPECT_EQ(transfer(false), -1);
  EXPECT_EQ(transport->brokenBy(), "the connection was closed");
}

}  // namespace
}  // namespace headunit
