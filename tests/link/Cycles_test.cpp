// One link after another in one process, over TCP and in memory, without growing.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "LiveLink.h"
#include "ProcessMemory.h"
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

/// Of the resident memory, whatever the number of links: heaps come and go in pieces.
[[maybe_unused]] constexpr long MOST_GROWTH_KILOBYTES = 4 * 1024;

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

void runLinks(int count) {
  for (int i = 0; i < count && !testing::Test::HasFailure(); ++i) runOneLink();
}

TEST(LinkCycles, CyclesOfConnectStreamAndStopOverTcpLeaveNoThreadAndNoDescriptorAndNoMemoryBehind) {
  constexpr int WARM_UP = 10;  // what the process sets up once, and heaps for as many threads as ever run
  const char* const wanted = getenv("VANTRY_CYCLES");
  const int cycles = wanted == nullptr ? 50 : atoi(wanted);
  runLinks(WARM_UP);
  const std::size_t threads = entriesOf(THREADS);
  const std::size_t descriptors = entriesOf(DESCRIPTORS);
  [[maybe_unused]] const long before = memoryKilobytes("VmRSS");
  runLinks(cycles);
  EXPECT_TRUE(comesTo(THREADS, threads)) << entriesOf(THREADS) << " threads, " << threads << " before";
  EXPECT_EQ(entriesOf(DESCRIPTORS), descriptors);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // whose own book-keeping counts too
  EXPECT_LT(memoryKilobytes("VmRSS") - before, MOST_GROWTH_KILOBYTES) << before << " kB before";
#endif
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
