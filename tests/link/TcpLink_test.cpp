// Whole links over TCP, on loopback: the library's threads on one end, the independent phone on the other.

#include "TcpLink.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <future>

namespace test {
namespace {

TEST(TcpLinkTest, StreamsBothWaysFromTheHandshakeToTheGoodBye) {
  constexpr Number MESSAGES = 1000;
  TcpLink link;
  ASSERT_TRUE(link.runs(MESSAGES));
  link.expectArrivals(MESSAGES);
}

TEST(TcpLinkTest, SeveralReceiversOfOneProcessStreamAtOnce) {
  constexpr Number MESSAGES = 500;
  std::vector<std::unique_ptr<TcpLink>> links;
  std::vector<std::future<bool>> phones;
  for (int i = 0; i < 4; ++i) {
    TcpLink* const link = links.emplace_back(std::make_unique<TcpLink>()).get();
    phones.push_back(std::async(std::launch::async, [link] { return link->runs(MESSAGES); }));
  }
  for (std::future<bool>& phone : phones) EXPECT_TRUE(phone.get());
  for (const auto& link : links) link->expectArrivals(MESSAGES);
}

/// A head unit that talks into a connection whose other end does nothing.
struct TalkToNobody {
  TalkToNobody() {
    // So that there is soon no room for more.
    const int little = 4096;
    setsockopt(sockets.headUnit.descriptor(), SOL_SOCKET, SO_SNDBUF, &little, sizeof little);
    setsockopt(sockets.phone.descriptor(), SOL_SOCKET, SO_RCVBUF, &little, sizeof little);
    transport = std::make_unique<SocketTransport>(&headUnit.receiver, std::move(sockets.headUnit));
    headUnit.starts(transport.get());
  }
  ~TalkToNobody() { headUnit.ends(); }

  FullHeadUnit headUnit;
  TcpPair sockets;
  std::unique_ptr<SocketTransport> transport;
};

TEST(TcpLinkTest, StopsWhileAWriteWaitsForRoom) {
  TalkToNobody link;
  for (int i = 0; i < 50000; ++i) link.headUnit.receiver.controller().sendPingRequest(i, false);
  ASSERT_TRUE(link.transport->waitsForBlockedWrite());
  link.headUnit.ends();  // returns
  EXPECT_TRUE(link.transport->isStopRequested());
}

TEST(TcpLinkTest, EndsByItselfWhenThePhoneGoesAway) {
  TalkToNobody link;
  link.sockets.phone.close();
  link.transport->waitForExit();
  EXPECT_TRUE(link.transport->isStopRequested());
}

}  // namespace
}  // namespace test
