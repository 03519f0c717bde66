#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <atomic>
#include <future>

#include "phone/verify/SocketHeadUnit.h"

namespace test {
namespace {

constexpr phone::Micros longerThanAnyTest = 600'000'000;

struct VerifySocketHeadUnit : testing::Test {
  std::string error;
  phone::Wake wake;
  phone::Socket listener = phone::listenOn({"127.0.0.1", 0}, &error);
};

TEST_F(VerifySocketHeadUnit, AnInterruptionEndsAWaitAndNotTheNextOne) {
  phone::verify::SocketHeadUnit headUnit(phone::localEndpoint(listener), &wake);
  const auto link = headUnit.connect({}, &error);
  ASSERT_TRUE(link) << error;
  EXPECT_FALSE(headUnit.interrupted());
  wake.raise();
  EXPECT_FALSE(link->runUntil([] { return false; }, longerThanAnyTest));
  EXPECT_TRUE(headUnit.interrupted());

  const phone::Socket peer = phone::acceptOne(listener, &wake, &error);
  ASSERT_TRUE(peer) << "the wake is still raised: " << error;
}

TEST_F(VerifySocketHeadUnit, AnInterruptionEndsTheWaitForAHeadUnitThatConnects) {
  phone::verify::SocketHeadUnit headUnit(std::move(listener), &wake);
  wake.raise();
  EXPECT_EQ(headUnit.connect({}, &error), nullptr);
  EXPECT_TRUE(headUnit.interrupted());
}

TEST_F(VerifySocketHeadUnit, ALinkIsOverOnlyOnceTheHeadUnitHasSeenItsEnd) {
  phone::verify::SocketHeadUnit headUnit(phone::localEndpoint(listener), &wake);
  auto link = headUnit.connect({}, &error);
  ASSERT_TRUE(link) << error;
  phone::Socket peer = phone::acceptOne(listener, &wake, &error);
  std::atomic<bool> seen = false;
  const auto served = std::async(std::launch::async, [&] {
    pollfd polled{peer.descriptor(), POLLIN, 0};
    ::poll(&polled, 1, -1);
    std::uint8_t byte = 0;
    seen = ::recv(peer.descriptor(), &byte, 1, 0) == 0;
    peer.close();
  });
  link.reset();
  EXPECT_TRUE(seen);
}

TEST_F(VerifySocketHeadUnit, AHeadUnitThatIsNotThereIsNoInterruption) {
  const phone::Endpoint endpoint = phone::localEndpoint(listener);
  listener.close();
  phone::verify::SocketHeadUnit headUnit(endpoint, &wake);
  EXPECT_EQ(headUnit.connect({}, &error), nullptr);
  EXPECT_FALSE(error.empty());
  EXPECT_FALSE(headUnit.interrupted());
}

}  // namespace
}  // namespace test
