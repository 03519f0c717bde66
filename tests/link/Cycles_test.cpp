// One link after another in one process, over TCP and in memory, without growing.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "LiveLink.h"
#include "TcpLink.h"

namespace {

using namespace test;
using Clock = std::chrono::steady_clock;

std::size_t entriesOf(const char* folder) {
  const std::filesystem::directory_iterator entries(folder);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

constexpr const char* THREADS = "/proc/self/task";
constexpr const char* DESCRIPTORS = "/proc/self/fd";

/// Whether the folder comes to have `count` entries. A thread that was joined may be listed a moment longer.
bool comesTo(const char* folder, std::size_t count) {
  const Clock::time_point limit = Clock::now() + std::chrono::seconds(20);
  while (entriesOf(folder) != count && Clock::now() < limit) std::this_thread::yield();
  return entriesOf(folder) == count;
}

void runOneLink() {
  constexpr Number MESSAGES = 10;
  TcpLink link;
  ASSERT_TRUE(link.runs(MESSAGES));
  link.expectArrivals(MESSAGES);
}

TEST(LinkCycles, CyclesOfConnectStreamAndStopOverTcpLeaveNoThreadAndNoDescriptorBehind) {
  const char* const wanted = getenv("VANTRY_CYCLES");
  const int cycles = wanted == nullptr ? 50 : atoi(wanted);
  runOneLink();  // what the process sets up once
  const std::size_t threads = entriesOf(THREADS);
  const std::size_t descriptors = entriesOf(DESCRIPTORS);
  for (int i = 0; i < cycles && !HasFailure(); ++i) runOneLink();
  EXPECT_TRUE(comesTo(THREADS, threads)) << entriesOf(THREADS) << " threads, " << threads << " before";
  EXPECT_EQ(entriesOf(DESCRIPTORS), descriptors);
}

TEST(LinkCycles, CyclesOfWholeStreamsLeaveNoThreadAndNoDescriptorBehind) {
  const std::size_t threads = entriesOf(THREADS);
  const std::size_t descriptors = entriesOf(DESCRIPTORS);
  for (unsigned int i = 0; i < 10; ++i) {
    LiveLink link;
    link.start();
    ASSERT_TRUE(link.comesUp() && link.opensVideo() && link.sendsFrame(pattern(30000, i)));
    link.stop();
  }
  EXPECT_TRUE(comesTo(THREADS, threads)) << entriesOf(THREADS) << " threads, " << threads << " before";
  EXPECT_EQ(entriesOf(DESCRIPTORS), descriptors);
}

}  // namespace
