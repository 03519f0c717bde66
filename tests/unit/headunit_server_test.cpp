#include "headunit/Server.h"

#include <gmock/gmock.h>
#include <poll.h>
#include <sys/socket.h>

#include <optional>
#include <thread>

#include "TestCredentials.h"
#include "headunit_log.h"

namespace headunit {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// Nobody gets as far as to send it anything.
class IdleDecoder : public VideoDecoder {
 public:
  void configure(const CodecConfig&) override {}
  std::string decode(VideoFrame, const OnPicture&) override { return {}; }
  std::vector<std::string> finish(const OnPicture&) override { return {}; }
};

/// A head unit that waits for phones, on a thread of its own.
class HeadunitServer : public testing::Test {
 protected:
  HeadunitServer() {
    const test::TestCredentials& made = test::credentials();
    equipment.credentials = {made.root, made.headUnit.certificate, made.headUnit.key};
    equipment.makeDecoder = [] { return std::make_unique<IdleDecoder>(); };
    equipment.slot = &slot;
    equipment.budget = &budget;
    equipment.mixer = &mixer;
    equipment.controls = &controls;
    equipment.drive = &drive;
    equipment.libraryLines = &libraryLines;
    equipment.cluster = &cluster;
    equipment.clusterKeys = &clusterKeys;
    equipment.slowWork = &slowWork;
    equipment.decodeImage = [](const std::string&) { return Image(); };
    options.listen = {"127.0.0.1", 0};
    server.emplace(options, equipment, -1);
    server->afterLink([this](LinkRecord record) { links.push_back(std::move(record)); });
    running = std::thread([this] { status = server->run(); });
    address = waitsFor("a phone");
  }
  ~HeadunitServer() override { end(); }

  /// Waits until the head unit does, and returns where it is to be found.
  Address waitsFor(const std::string& whom) const {
    const std::string start = "Waiting for " + whom + " on ";
    const std::string line = log.waitFor(start);
    if (line.size() <= start.size()) return {};
    return parseAddress(line.substr(start.size(), line.size() - start.size() - 1)).value_or(Address());
  }

  FileDescriptor call() {
    NoConnection why;
    FileDescriptor phone = connectTo(address, std::chrono::seconds(20), never, &why);
    EXPECT_TRUE(phone) << why.reason;
    return phone;
  }

  /// How many of the head unit's next bytes have come; 0: it has closed the connection.
  static ssize_t hear(const FileDescriptor& phone) {
    pollfd waiting{phone.get(), POLLIN, 0};
    char bytes[64];
    return poll(&waiting, 1, 20'000) == 1 ? recv(phone.get(), bytes, sizeof bytes, 0) : -1;
  }

  void end() {
    server->quit();
    if (running.joinable()) running.join();
  }

  const LoggedLines log;
  WakeEvent never;
  PictureSlot slot;
  FrameBudget budget{0};
  Mixer mixer;
  Controls controls;
  DriveScript drive;
  RecentLines libraryLines;
  Cluster cluster;
  ClusterKeys clusterKeys;
  SlowWork slowWork{1};
  Equipment equipment;
  Options options;
  std::vector<LinkRecord> links;
  std::optional<Server> server;
  int status = -1;
  std::thread running;
  Address address;
};

TEST_F(HeadunitServer, TurnsASecondPhoneAwayAndGoesOnWithTheFirst) {
  const FileDescriptor first = call();
  EXPECT_GT(hear(first), 0) << "it is being served";
  const FileDescriptor second = call();
  EXPECT_EQ(hear(second), 0);
  EXPECT_THAT(log.waitFor("turned away"), HasSubstr("a phone is connected already"));
  end();
  EXPECT_THAT(links, SizeIs(1)) << "the other one was none";
}

TEST_F(HeadunitServer, SaysWhereItWaitsInTheWindowWhileItDoes) {
  EXPECT_EQ(cluster.view().phone.awaited, "on " + address.words());
  EXPECT_FALSE(cluster.view().ofPhone);
  {
    const FileDescriptor phone = call();
    EXPECT_GT(hear(phone), 0);
    EXPECT_THAT(cluster.view().phone.awaited, IsEmpty());
    EXPECT_TRUE(cluster.view().ofPhone);
  }
  EXPECT_EQ(waitsFor("the next phone").words(), address.words());
  EXPECT_EQ(cluster.view().phone.awaited, "on " + address.words());
  EXPECT_TRUE(cluster.view().ofPhone) << "what it has left is still there";
  end();
  EXPECT_THAT(links, SizeIs(1));
}

}  // namespace
}  // namespace headunit
