#include <gmock/gmock.h>
#include <signal.h>

#include <atomic>
#include <thread>
#include <type_traits>

#include "FailingCalls.h"
#include "Mutex.h"
#include "Semaphore.h"

namespace test {
namespace {

static_assert(sizeof(Mutex) == sizeof(pthread_mutex_t));
static_assert(sizeof(Autolock) == sizeof(Mutex*));
static_assert(sizeof(Semaphore) == sizeof(sem_t));
static_assert(!std::is_copy_constructible_v<Mutex> && !std::is_copy_constructible_v<Autolock>);
static_assert(!std::is_copy_constructible_v<Semaphore>);

TEST(MutexTest, PassesOnTheResultsOfThePlatform) {
  Mutex mutex;
  EXPECT_EQ(mutex.lock(), 0);
  EXPECT_EQ(mutex.unlock(), 0);
}

TEST(AutolockTest, HoldsTheMutexForItsScope) {
  Mutex mutex;
  int count = 0;
  const auto work = [&] {
    for (int i = 0; i < 20000; ++i) {
      const Autolock lock(&mutex);
      ++count;
    }
  };
  std::thread other(work);
  work();
  other.join();
  EXPECT_EQ(count, 40000);
}

TEST(AutolockTest, ReleasesOnEveryWayOut) {
  Mutex mutex;
  const auto leave = [&](bool early) {
    const Autolock lock(&mutex);
    if (early) return 1;
    return 2;
  };
  EXPECT_EQ(leave(true), 1);
  EXPECT_EQ(leave(false), 2) << "a lock still held would block for ever";
}

TEST(SemaphoreTest, StartsAtItsValueAndLetsThatManyThrough) {
  Semaphore semaphore(3);
  EXPECT_TRUE(semaphore.down());
  EXPECT_TRUE(semaphore.down());
  EXPECT_TRUE(semaphore.down());
}

TEST(SemaphoreTest, WaitsOnTheCountThatItStartedAt) {
  const FailingCall waits("sem_wait", FailingCall::EVERY);
  EXPECT_FALSE(Semaphore().down());
  EXPECT_EQ(waits.number(), 0U) << "who comes first is made to wait";
  EXPECT_FALSE(Semaphore(3).down());
  EXPECT_EQ(waits.number(), 3U);
}

TEST(SemaphoreTest, StartsAtZeroWithoutAValue) {
  Semaphore semaphore;
  std::atomic<bool> passed{false};
  std::thread waiter([&] { passed = semaphore.down(); });
  EXPECT_TRUE(semaphore.up());
  waiter.join();
  EXPECT_TRUE(passed);
}

TEST(SemaphoreTest, CountsUpsThatNobodyWaitsFor) {
  Semaphore semaphore;
  EXPECT_TRUE(semaphore.up());
  EXPECT_TRUE(semaphore.up());
  EXPECT_TRUE(semaphore.down());
  EXPECT_TRUE(semaphore.down());
}

TEST(SemaphoreTest, AnOverflowIsRefused) {
  Semaphore semaphore(SEM_VALUE_MAX);
  EXPECT_FALSE(semaphore.up());
}

void ignore(int) {}

TEST(SemaphoreTest, ASignalEndsAWaitWithNothingTaken) {
  struct sigaction action = {};
  action.sa_handler = ignore;
  struct sigaction former;
  ASSERT_EQ(sigaction(SIGUSR1, &action, &former), 0);

  Semaphore semaphore;
  std::atomic<bool> ended{false};
  std::atomic<bool> result{true};
  std::thread waiter([&] {
    result = semaphore.down();
    ended = true;
  });
  // Whether the thread waits already cannot be seen: signals go on until one has found it waiting.
  while (!ended) {
    pthread_kill(waiter.native_handle(), SIGUSR1);
    std::this_thread::yield();
  }
  waiter.join();
  EXPECT_FALSE(result);

  semaphore.up();
  EXPECT_TRUE(semaphore.down()) << "the interrupted wait took nothing";
  sigaction(SIGUSR1, &former, nullptr);
}

}  // namespace
}  // namespace test
