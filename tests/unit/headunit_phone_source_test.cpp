#include "headunit/PhoneSource.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "headunit_log.h"

namespace headunit {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

constexpr milliseconds BETWEEN_TRIES(200);
constexpr milliseconds LAST_LINK_ENDS(2000);

/// Waits for nothing: its clock goes on to the end of each pause, and something may happen meanwhile.
class TestPatience : public Patience {
 public:
  TestPatience() : Patience(-1) {}

  TimePoint now() const override { return now_; }
  void waitUntil(std::optional<TimePoint> deadline, int descriptor) override {
    happens();
    if (deadline) {
      pauses.push_back(std::chrono::duration_cast<milliseconds>(*deadline - now_));
      now_ = *deadline;
    } else {
      pollfd waiting[] = {{descriptor, POLLIN, 0}, {wake()->descriptor(), POLLIN, 0}};
      EXPECT_GT(poll(waiting, 2, 5000), 0) << "nothing is there to wait for";
    }
  }

  void passes(milliseconds time) { now_ += time; }

  std::function<void()> happens = [] {};
  std::vector<milliseconds> pauses;

 private:
  TimePoint now_ = TimePoint(std::chrono::seconds(1000));
};

struct HeadunitPhoneSource : testing::Test {
  TestPatience patience;
  WakeEvent never;
  NoConnection why;

  FileDescriptor call(const Address& address) {
    return connectTo(address, std::chrono::seconds(5), never, &why);
  }
};

// ---- Phones that call ----

/// The program tells where it listens on its standard output.
struct HeadunitPhonesThatCall : HeadunitPhoneSource {
  Address address;
  std::unique_ptr<PhoneSource> phones = [this] {
    testing::internal::CaptureStdout();
    auto source = phonesThatCall({"127.0.0.1", 0}, &patience);
    const std::string line = testing::internal::GetCapturedStdout();
    constexpr char START[] = "listening on ";
    EXPECT_EQ(line.compare(0, sizeof START - 1, START), 0) << line;
    address = *parseAddress(line.substr(sizeof START - 1, line.size() - sizeof START));
    return source;
  }();
};

TEST_F(HeadunitPhonesThatCall, AreWaitedForWithoutALimit) {
  FileDescriptor phone;
  patience.happens = [&] { phone = call(address); };
  EXPECT_TRUE(phones->next());
  EXPECT_TRUE(phone) << why.reason;
  EXPECT_THAT(patience.pauses, SizeIs(0));
}

TEST_F(HeadunitPhonesThatCall, AreToldWhereTheyAreWaitedForOnceForEachOfThem) {
  const LoggedLines log;
  EXPECT_EQ(phones->place(), "on " + address.words());
  FileDescriptor phone;
  patience.happens = [&] { phone = call(address); };
  EXPECT_TRUE(phones->next());
  bool spurious = true;
  patience.happens = [&] {
    if (std::exchange(spurious, false)) return patience.wake()->raise();
    phone = call(address);
  };
  EXPECT_TRUE(phones->next());
  EXPECT_THAT(log.all(),
              ElementsAre("Waiting for a phone on " + address.words() + ".", HasSubstr("connects"),
                          "Waiting for the next phone on " + address.words() + ".", HasSubstr("connects")));
}

/// Ends its side of the connection, and knows that the other side's system has heard of it.
void hangUp(const FileDescriptor& phone) {
  ASSERT_EQ(shutdown(phone.get(), SHUT_WR), 0);
  for (tcp_info info{}; info.tcpi_state != TCP_FIN_WAIT2; std::this_thread::yield()) {
    socklen_t size = sizeof info;
    ASSERT_EQ(getsockopt(phone.get(), IPPROTO_TCP, TCP_INFO, &info, &size), 0);
  }
}

bool becomesReadable(int descriptor) {
  pollfd waiting{descriptor, POLLIN, 0};
  return poll(&waiting, 1, 5000) == 1;
}

bool isClosed(const FileDescriptor& phone) {
  char byte = 0;
  return becomesReadable(phone.get()) && recv(phone.get(), &byte, 1, 0) == 0;
}

TEST_F(HeadunitPhonesThatCall, AreLeftOutIfTheyHaveGoneMeanwhile) {
  const FileDescriptor silent = call(address);
  hangUp(silent);
  const FileDescriptor talking = call(address);
  ASSERT_EQ(write(talking.get(), "hello", 5), 5);
  hangUp(talking);
  const FileDescriptor patient = call(address);
  const FileDescriptor served = phones->next();
  ASSERT_TRUE(served);
  ASSERT_EQ(write(patient.get(), "x", 1), 1);
  ASSERT_TRUE(becomesReadable(served.get()));
  char text[8];
  EXPECT_EQ(read(served.get(), text, sizeof text), 1) << "it is the one that is still there";
}

TEST_F(HeadunitPhonesThatCall, AreTurnedAwayWhileAnotherIsServed) {
  const LoggedLines log;
  const FileDescriptor first = call(address);
  const FileDescriptor served = phones->next();
  const int newcomers = phones->turnOthersAway();
  const FileDescriptor second = call(address);
  ASSERT_TRUE(second) << why.reason;
  ASSERT_TRUE(becomesReadable(newcomers));
  EXPECT_EQ(phones->turnOthersAway(), -1) << "the first may be about to go";
  patience.passes(LAST_LINK_ENDS);
  EXPECT_EQ(phones->turnOthersAway(), newcomers);
  EXPECT_TRUE(isClosed(second));
  EXPECT_EQ(write(first.get(), "x", 1), 1);
  EXPECT_TRUE(becomesReadable(served.get()));
  EXPECT_THAT(log.all().back(), HasSubstr("a phone is connected already"));
  EXPECT_THAT(log.all().back(), HasSubstr(localAddress(second).words()));
}

TEST_F(HeadunitPhonesThatCall, AreTurnedAwayWithFewWords) {
  const LoggedLines log;
  const FileDescriptor first = call(address);
  const FileDescriptor served = phones->next();
  const std::size_t before = log.all().size();
  const int newcomers = phones->turnOthersAway();
  for (int i = 0; i < 9; ++i) {
    const FileDescriptor other = call(address);
    ASSERT_TRUE(becomesReadable(newcomers));
    EXPECT_EQ(phones->turnOthersAway(), -1);
    patience.passes(LAST_LINK_ENDS);
    EXPECT_EQ(phones->turnOthersAway(), newcomers);
    EXPECT_TRUE(isClosed(other));
  }
  EXPECT_EQ(log.all().size(), before + 3);
}

TEST_F(HeadunitPhonesThatCall, AreNextIfTheyComeWhileTheLastLinkEnds) {
  const FileDescriptor first = call(address);
  const FileDescriptor served = phones->next();
  const FileDescriptor second = call(address);
  ASSERT_TRUE(second) << why.reason;
  EXPECT_EQ(phones->turnOthersAway(), -1);
  const FileDescriptor next = phones->next();
  ASSERT_TRUE(next);
  EXPECT_EQ(write(second.get(), "x", 1), 1);
  EXPECT_TRUE(becomesReadable(next.get()));
}

/// No descriptor more than there are.
class FewDescriptors {
 public:
  FewDescriptors() {
    getrlimit(RLIMIT_NOFILE, &before_);
    const rlimit none{0, before_.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  }
  ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }
  FewDescriptors(const FewDescriptors&) = delete;
  FewDescriptors& operator=(const FewDescriptors&) = delete;

 private:
  rlimit before_{};
};

TEST_F(HeadunitPhonesThatCall, AreGivenASecondIfTheyCannotBeTaken) {
  const FileDescriptor phone = call(address);
  ASSERT_TRUE(phone) << why.reason;
  std::optional<FewDescriptors> few(std::in_place);
  patience.happens = [&] {
    if (patience.pauses.size() == 1) few.reset();
  };
  EXPECT_TRUE(phones->next());
  EXPECT_THAT(patience.pauses, ElementsAre(milliseconds(1000), milliseconds(1000)));
}

TEST_F(HeadunitPhonesThatCall, AreNotWaitedForWhileTheyCannotEvenBeTurnedAway) {
  const FileDescriptor first = call(address);
  const FileDescriptor served = phones->next();
  const int newcomers = phones->turnOthersAway();
  const FileDescriptor second = call(address);
  ASSERT_TRUE(becomesReadable(newcomers));
  EXPECT_EQ(phones->turnOthersAway(), -1);
  patience.passes(LAST_LINK_ENDS);
  {
    const FewDescriptors few;
    EXPECT_EQ(phones->turnOthersAway(), -1) << "it would be readable all the time";
  }
  EXPECT_EQ(phones->turnOthersAway(), newcomers);
  EXPECT_TRUE(isClosed(second));
}

TEST_F(HeadunitPhonesThatCall, AreWaitedForNoLongerOnceItIsOver) {
  FileDescriptor phone;
  patience.happens = [&] {
    phone = call(address);
    patience.end();
  };
  EXPECT_FALSE(phones->next());
  EXPECT_FALSE(phones->next());
}

TEST_F(HeadunitPhoneSource, IsNoneWhereNobodyCanListen) {
  EXPECT_FALSE(phonesThatCall({"no such host", 1}, &patience));
}

// ---- A phone to call ----

/// A phone whose port is its own, whether it listens there or not.
struct HeadunitPhoneToCall : HeadunitPhoneSource {
  FileDescriptor phone = [] {
    FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(bind(socket.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    return socket;
  }();
  std::unique_ptr<PhoneSource> phones = phoneToCall(localAddress(phone), &patience);

  void starts() { EXPECT_EQ(listen(phone.get(), 10), 0); }
  void goes() { phone.close(); }
};

TEST_F(HeadunitPhoneToCall, IsConnectedAtOnceIfItIsThere) {
  starts();
  EXPECT_TRUE(phones->next());
  EXPECT_THAT(patience.pauses, SizeIs(0));
}

TEST_F(HeadunitPhoneToCall, MayStartAMomentLater) {
  patience.happens = [this] {
    if (patience.pauses.size() == 2) starts();
  };
  EXPECT_TRUE(phones->next());
  EXPECT_THAT(patience.pauses, ElementsAre(BETWEEN_TRIES, BETWEEN_TRIES, BETWEEN_TRIES));
}

TEST_F(HeadunitPhoneToCall, IsToldWhereItIsWaitedFor) {
  const LoggedLines log;
  patience.happens = [this] {
    if (patience.pauses.size() == 2) starts();
  };
  EXPECT_TRUE(phones->next());
  const std::string place = "at " + localAddress(phone).words();
  EXPECT_EQ(phones->place(), place);
  EXPECT_THAT(log.all(), ElementsAre("Waiting for the phone " + place + ": nobody listens there.",
                                     HasSubstr("Connected to the phone")));
}

TEST_F(HeadunitPhoneToCall, IsGivenUpAfterThreeSeconds) {
  EXPECT_FALSE(phones->next());
  EXPECT_FALSE(patience.isOver());
  EXPECT_THAT(patience.pauses, SizeIs(15));
  EXPECT_THAT(patience.pauses, Each(BETWEEN_TRIES));
}

TEST_F(HeadunitPhoneToCall, IsGivenUpAtOnceIfThereIsNoSuchHost) {
  const LoggedLines log;
  EXPECT_FALSE(phoneToCall({"no such host", 1}, &patience)->next());
  EXPECT_THAT(patience.pauses, SizeIs(0));
  EXPECT_THAT(log.all(), ElementsAre(HasSubstr("; check the address.")));
}

TEST_F(HeadunitPhoneToCall, IsNotCalledAgainWithoutAPause) {
  starts();
  phones->next();
  EXPECT_TRUE(phones->next());
  EXPECT_THAT(patience.pauses, ElementsAre(BETWEEN_TRIES));
}

TEST_F(HeadunitPhoneToCall, IsNeverGivenUpOnceItWasThere) {
  starts();
  phones->next();
  goes();
  patience.happens = [this] {
    if (patience.pauses.size() == 99) patience.end();
  };
  EXPECT_FALSE(phones->next());
  EXPECT_THAT(patience.pauses, SizeIs(100));
}

TEST_F(HeadunitPhoneToCall, IsNotCalledOnceItIsOver) {
  starts();
  patience.end();
  EXPECT_FALSE(phones->next());
  EXPECT_THAT(patience.pauses, SizeIs(0));
}

TEST_F(HeadunitPhoneToCall, IsCalledInSpiteOfWhatWasToldBefore) {
  starts();
  patience.wake()->raise();
  EXPECT_TRUE(phones->next());
}

// ---- The patience itself ----

TEST(HeadunitPatience, IsWokenOnceByEachThatHasSomethingToTell) {
  Patience patience(-1);
  patience.wake()->raise();
  patience.waitUntil({});
  EXPECT_TRUE(patience.lasts());
  pollfd waiting{patience.wake()->descriptor(), POLLIN, 0};
  EXPECT_EQ(poll(&waiting, 1, 0), 0);
}

TEST(HeadunitPatience, EndsEveryWait) {
  Patience patience(-1);
  patience.end();
  patience.waitUntil({});
  EXPECT_TRUE(patience.isOver());
  EXPECT_FALSE(patience.lasts());
}

TEST(HeadunitPatience, IsOverWithASignal) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const FileDescriptor signals(ends[0]);
  const FileDescriptor sender(ends[1]);
  Patience patience(signals.get());
  ASSERT_EQ(write(sender.get(), "1", 1), 1);
  patience.waitUntil({});
  EXPECT_TRUE(patience.isOver());
}

TEST(HeadunitPatience, WaitsForADescriptorAndNoLongerThanToTheDeadline) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const FileDescriptor reader(ends[0]);
  const FileDescriptor writer(ends[1]);
  Patience patience(-1);
  patience.waitUntil(TimePoint(), reader.get());
  ASSERT_EQ(write(writer.get(), "1", 1), 1);
  patience.waitUntil({}, reader.get());
  EXPECT_FALSE(patience.isOver());
}

}  // namespace
}  // namespace headunit
