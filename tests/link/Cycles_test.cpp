// One link after another in one process, over real sockets, without growing.

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "LiveLink.h"

namespace {

using namespace test;

std::size_t entriesOf(const char* folder) {
  const std::filesystem::directory_iterator entries(folder);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/// A stream over a pair of connected sockets: `phoneSide` is the other end.
class SocketTransport : public Transport {
 public:
  explicit SocketTransport(VantryReceiver* link) : Transport(link) {
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, sockets) != 0) abort();
  }
  ~SocketTransport() override {
    close(sockets[0]);
    close(sockets[1]);
  }
  int phoneSide() const { return sockets[1]; }
  void abortTransfers() override { ::shutdown(sockets[0], SHUT_RDWR); }
  int read(void* data, unsigned int length) override { return result(recv(sockets[0], data, length, 0)); }
  int write(void* data, unsigned int length) override {
    return result(send(sockets[0], data, length, MSG_NOSIGNAL));
  }

 private:
  static int result(ssize_t count) { return count > 0 ? static_cast<int>(count) : -1; }
  int sockets[2];
};

class StoppingHost : public IControllerCallbacks {
 public:
  void serviceDiscoveryRequest(const std::string&, const std::string&, const std::string&,
                               const std::string&) override {}
  void unrecoverableError() override {}
  void pingRequest(long long, bool) override {}
  void pingResponse(long long) override {}
  void navigationFocusRequest(NavFocusType) override {}
  void byeByeRequest(ByeByeReason) override {}
  void byeByeResponse() override {}
  void voiceSessionNotification(VoiceSessionStatus) override {}
  void audioFocusRequest(AudioFocusRequestType) override {}
  void authenticationCompleted(int) override {}
  void versionResponse(unsigned long long, unsigned long long) override {}
};

/// Brings the phone up on a socket; false if the stream ended before.
bool comesUp(int socket, phone::PhoneLink* phone) {
  Bytes received(4096, 0);
  while (phone->state() != phone::LinkState::up) {
    const ssize_t count = recv(socket, received.data(), received.size(), 0);
    if (count <= 0) return false;
    phone->feed(received.data(), static_cast<std::size_t>(count));
    const Bytes answer = phone->takeOutput();
    if (send(socket, answer.data(), answer.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(answer.size()))
      return false;
  }
  return true;
}

void runOneLink() {
  VantryReceiver receiver;
  receiver.init(shared_ptr<IControllerCallbacks>(new StoppingHost()));
  const Identity& own = credentials().headUnit;
  ASSERT_TRUE(receiver.controller().setClientCreds(credentials().root, own.certificate, own.key));
  SocketTransport transport(&receiver);
  ASSERT_TRUE(transport.start());
  receiver.start();

  phone::LinkOptions options;
  options.credentials = {credentials().root, credentials().phone.certificate, credentials().phone.key};
  phone::PhoneLink phone(options);
  EXPECT_TRUE(comesUp(transport.phoneSide(), &phone));

  transport.requestStop();
  transport.waitForExit();
  receiver.shutdown();
}

TEST(LinkCycles, CyclesOfConnectAndStopLeaveNoThreadAndNoDescriptorBehind) {
  const char* const wanted = getenv("VANTRY_CYCLES");
  const int cycles = wanted == nullptr ? 50 : atoi(wanted);
  runOneLink();  // what the process sets up once
  const std::size_t threads = entriesOf("/proc/self/task");
  const std::size_t descriptors = entriesOf("/proc/self/fd");
  for (int i = 0; i < cycles && !HasFailure(); ++i) runOneLink();
  EXPECT_EQ(entriesOf("/proc/self/task"), threads);
  EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
}

TEST(LinkCycles, CyclesOfWholeStreamsLeaveNoThreadBehind) {
  const std::size_t threads = entriesOf("/proc/self/task");
  for (unsigned int i = 0; i < 10; ++i) {
    LiveLink link;
    link.start();
    ASSERT_TRUE(link.comesUp() && link.opensVideo() && link.sendsFrame(pattern(30000, i)));
    link.stop();
  }
  EXPECT_EQ(entriesOf("/proc/self/task"), threads);
}

}  // namespace
