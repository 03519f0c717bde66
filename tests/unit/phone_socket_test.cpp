#include "phone/Socket.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Wire.h"
#include "phone/SocketRunner.h"

namespace test {
namespace {

using phone::Endpoint;
using phone::Socket;
using phone::Wake;
using testing::HasSubstr;
using testing::StartsWith;

constexpr phone::Micros ample = 30'000'000;

// ---- Addresses ----

TEST(PhoneEndpoint, IsHostAndPort) {
  const auto plain = phone::parseEndpoint("car.local:7411");
  ASSERT_TRUE(plain);
  EXPECT_EQ(plain->host, "car.local");
  EXPECT_EQ(plain->port, 7411);
  EXPECT_EQ(plain->words(), "car.local:7411");
}

TEST(PhoneEndpoint, AnIpv6AddressStandsInBrackets) {
  const auto bracketed = phone::parseEndpoint("[::1]:80");
  ASSERT_TRUE(bracketed);
  EXPECT_EQ(bracketed->host, "::1");
  EXPECT_EQ(bracketed->words(), "[::1]:80");
}

TEST(PhoneEndpoint, NothingElseIsOne) {
  for (const char* text : {"", ":", "host", "host:", ":80", "host:65536", "host:-1", "host:8x", "host: 8",
                           "::1:80", "[]:80", "host:99999999999999999999"}) {
    EXPECT_FALSE(phone::parseEndpoint(text)) << text;
  }
}

// ---- Connections ----

struct PhoneSockets : testing::Test {
  Wake wake;
  std::string error;
  Socket listener = phone::listenOn({"127.0.0.1", 0}, &error);
};

TEST_F(PhoneSockets, PortZeroListensOnARealOne) {
  ASSERT_TRUE(listener) << error;
  const Endpoint where = phone::localEndpoint(listener);
  EXPECT_EQ(where.host, "127.0.0.1");
  EXPECT_NE(where.port, 0);
}

TEST_F(PhoneSockets, ConnectAndAcceptMeet) {
  Socket client = phone::connectTo(phone::localEndpoint(listener), ample, &wake, &error);
  ASSERT_TRUE(client) << error;
  Socket server = phone::acceptOne(listener, &wake, &error);
  ASSERT_TRUE(server) << error;
  ASSERT_EQ(::send(client.descriptor(), "x", 1, 0), 1);
  client.close();
  char byte = 0;
  ::ssize_t got = -1;
  while (got < 0) got = ::recv(server.descriptor(), &byte, 1, 0);
  EXPECT_EQ(byte, 'x');
}

TEST_F(PhoneSockets, APortInUseIsTold) {
  EXPECT_FALSE(phone::listenOn(phone::localEndpoint(listener), &error));
  EXPECT_THAT(error, HasSubstr("in use"));
}

TEST_F(PhoneSockets, ARefusedConnectionIsTold) {
  const Endpoint where = phone::localEndpoint(listener);
  listener.close();
  EXPECT_FALSE(phone::connectTo(where, ample, &wake, &error));
  EXPECT_THAT(error, HasSubstr("refused"));
}

TEST_F(PhoneSockets, AnUnknownHostIsTold) {
  EXPECT_FALSE(phone::connectTo({"999.999.999.999", 1}, ample, &wake, &error));
  EXPECT_THAT(error, StartsWith("unknown host \"999.999.999.999\""));
}

TEST_F(PhoneSockets, AWakeEndsTheWaitForAPeer) {
  wake.raise();
  EXPECT_FALSE(phone::acceptOne(listener, &wake, &error));
  EXPECT_EQ(error, "");
}

TEST(PhoneWake, StaysRaisedUntilCleared) {
  Wake wake;
  char byte[8];
  wake.raise();
  wake.raise();
  wake.clear();
  EXPECT_EQ(::read(wake.descriptor(), byte, sizeof byte), -1);
}

// ---- A link on a socket ----

struct PhoneSocketRunner : testing::Test {
  phone::PhoneLink link{phone::LinkOptions()};
  phone::Timers timers;
  Wake wake;
  phone::SocketRunner runner{&link, &timers, &wake};
  Socket mine;
  Socket theirs;

  PhoneSocketRunner() {
    int both[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, both) == 0) {
      mine = Socket(both[0]);
      theirs = Socket(both[1]);
    }
  }
  void writes(const Bytes& wire) {
    ASSERT_EQ(::send(theirs.descriptor(), wire.data(), wire.size(), 0), static_cast<::ssize_t>(wire.size()));
  }
  Bytes reads() {
    Bytes all;
    std::uint8_t piece[4096];
    ::ssize_t got = 0;
    while ((got = ::recv(theirs.descriptor(), piece, sizeof piece, 0)) > 0)
      all.insert(all.end(), piece, piece + got);
    return all;
  }
  void readsWhatIsThere() {
    std::uint8_t piece[4096];
    while (::recv(theirs.descriptor(), piece, sizeof piece, MSG_DONTWAIT) > 0) {
    }
  }
};

TEST_F(PhoneSocketRunner, CarriesBytesBothWaysUntilThePeerCloses) {
  writes(bytes("00 03 00 06 00 01 00 01 00 00"));
  ASSERT_EQ(::shutdown(theirs.descriptor(), SHUT_WR), 0);
  runner.run(std::move(mine));
  EXPECT_EQ(reads(), bytes("00 03 00 07 00 02 00 01 00 00 00"));
  ASSERT_TRUE(link.end());
  EXPECT_THAT(link.end()->words(), StartsWith("head unit: closed the connection, with the link in the TLS"));
}

TEST_F(PhoneSocketRunner, APeerThatIsGoneEndsTheLink) {
  theirs.close();
  link.sendBytes(filled(1 << 20, 7));
  runner.run(std::move(mine));
  ASSERT_TRUE(link.end());
  EXPECT_FALSE(link.end()->clean);
}

TEST_F(PhoneSocketRunner, ReadsThePeersLastWordsThoughItCanNoLongerWrite) {
  writes(bytes("00 03 00 02 FF FF"));
  theirs.close();
  link.sendBytes(filled(1 << 20, 7));
  runner.run(std::move(mine));
  EXPECT_THAT(link.end()->words(), StartsWith("head unit: reports a framing error"));
}

TEST_F(PhoneSocketRunner, SendsTheLastBytesOfALinkThatHasEnded) {
  link.sendBytes(bytes("01 02 03"));
  link.fail(phone::Side::phone, "ended", "nothing");
  ASSERT_EQ(::shutdown(theirs.descriptor(), SHUT_WR), 0);
  runner.run(std::move(mine));
  EXPECT_EQ(reads(), bytes("01 02 03"));
}

TEST_F(PhoneSocketRunner, AWakeEndsTheLink) {
  wake.raise();
  ASSERT_EQ(::shutdown(theirs.descriptor(), SHUT_WR), 0);
  runner.run(std::move(mine));
  EXPECT_EQ(link.end()->what, "was interrupted");
}

TEST_F(PhoneSocketRunner, AWakeIsTheOwnersToHandle) {
  int wakes = 0;
  runner.onWake([&] {
    if (++wakes == 2) link.finish({true, phone::Side::phone, "enough", ""});
    wake.raise();
  });
  wake.raise();
  runner.run(std::move(mine));
  EXPECT_EQ(wakes, 2);
  EXPECT_EQ(link.end()->what, "enough");
}

TEST_F(PhoneSocketRunner, HearsAPeerThatReadsNothingOnlyOnceItReads) {
  link.sendBytes(filled(8 << 20, 7));
  writes(bytes("00 03 00 06 00 01 00 01 00 00"));
  int wakes = 0;
  runner.onWake([&] {
    if (++wakes <= 3) {
      EXPECT_EQ(link.headUnitMajor(), 0) << "its version request waits";
    }
    if (wakes >= 3) readsWhatIsThere();
    if (link.headUnitMajor() == 1) {
      theirs.close();
      link.finish({true, phone::Side::phone, "enough", ""});
    }
    wake.raise();
  });
  wake.raise();
  runner.run(std::move(mine));
  EXPECT_EQ(link.end()->what, "enough");
}

TEST_F(PhoneSocketRunner, WindsTheTimers) {
  timers.after(1, [this] { link.finish({true, phone::Side::phone, "rang", ""}); });
  runner.run(std::move(mine));
  EXPECT_EQ(link.end()->what, "rang");
}

}  // namespace
}  // namespace test
