#include "WorkQueue.h"

#include <gmock/gmock.h>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <mutex>
#include <new>
#include <thread>

#include "FailingCalls.h"
#include "LogCapture.h"
#include "ThreadDefaults.h"

namespace test {
namespace {

using testing::Each;
using testing::IsEmpty;

constexpr int PRODUCERS = 8;
constexpr int THREADS = 4;

std::atomic<int> itemsAlive{0};

struct Item : WorkItem {
  explicit Item(std::function<void()> workToDo) : work(std::move(workToDo)) { ++itemsAlive; }
  ~Item() override { --itemsAlive; }
  void run() override { work(); }

  std::function<void()> work;
};

shared_ptr<WorkItem> item(std::function<void()> work) {
  return shared_ptr<WorkItem>(new Item(std::move(work)));
}

void wait(Semaphore& semaphore, int count = 1) {
  while (count > 0) {
    if (semaphore.down()) --count;
  }
}

struct WorkQueueTest : testing::Test {
  LogCapture log;
  Semaphore ran;
  std::atomic<int> occupationsEnded{0};

  /// Gives each of the `threads` threads of `queue` an item that ends when the queue stops.
  void occupy(WorkQueue* queue, int threads) {
    Semaphore started;
    for (int i = 0; i < threads; ++i) {
      queue->queueWork(item([=, &started] {
        started.up();
        while (!queue->isStopping()) sched_yield();
        ++occupationsEnded;
      }));
    }
    wait(started, threads);
  }
};

TEST_F(WorkQueueTest, RunsEachItemOnceInTheOrderOfQueueing) {
  WorkQueue queue(1);
  EXPECT_TRUE(queue.start());
  std::vector<int> order;  // the pool's one thread's, until it has ended
  for (int i = 0; i < 100; ++i) {
    EXPECT_TRUE(queue.queueWork(item([&, i] {
      order.push_back(i);
      ran.up();
    })));
  }
  wait(ran, 100);
  queue.shutdown();
  std::vector<int> expected;
  for (int i = 0; i < 100; ++i) expected.push_back(i);
  EXPECT_EQ(order, expected);
}

TEST_F(WorkQueueTest, RunsWhatWasQueuedBeforeTheStart) {
  WorkQueue queue(2);
  queue.queueWork(item([&] { ran.up(); }));
  EXPECT_TRUE(queue.start());
  wait(ran);
  queue.shutdown();
}

TEST_F(WorkQueueTest, RunsItemsOnThreadsOfItsOwnSideBySide) {
  WorkQueue queue(2);
  queue.start();
  Semaphore first;
  Semaphore second;
  pthread_t threads[2] = {};
  // Each waits for the other: one thread alone would never end them.
  queue.queueWork(item([&] { threads[0] = pthread_self(), first.up(), wait(second), ran.up(); }));
  queue.queueWork(item([&] { threads[1] = pthread_self(), second.up(), wait(first), ran.up(); }));
  wait(ran, 2);
  queue.shutdown();
  EXPECT_FALSE(pthread_equal(threads[0], threads[1]));
  EXPECT_FALSE(pthread_equal(threads[0], pthread_self()));
}

TEST_F(WorkQueueTest, GivesItsThreadsNeitherANameNorAPriority) {
  const ThreadDefaults defaults;
  WorkQueue queue(1);
  queue.start();
  Semaphore letGo;
  pthread_t thread{};
  queue.queueWork(item([&] { thread = pthread_self(), ran.up(), wait(letGo); }));
  wait(ran);
  defaults.expectOf(thread);
  letGo.up();
  queue.shutdown();
}

TEST_F(WorkQueueTest, AnItemMayQueueAnother) {
  WorkQueue queue(1);
  queue.start();
  queue.queueWork(item([&] { queue.queueWork(item([&] { ran.up(); })); }));
  wait(ran);
  queue.shutdown();
}

TEST_F(WorkQueueTest, ReleasesAnItemWhenItHasRun) {
  WorkQueue queue(1);
  queue.start();
  queue.queueWork(item([] {}));
  queue.queueWork(item([&] { ran.up(); }));
  wait(ran);
  EXPECT_LE(itemsAlive, 1);  // the one thread has dropped the first before it ran the second
  queue.shutdown();
  EXPECT_EQ(itemsAlive, 0);
}

TEST_F(WorkQueueTest, AfterEachItemAThreadYieldsOnce) {
  const FailingCall yields("sched_yield", FailingCall::NEVER);
  WorkQueue queue(1);
  queue.start();
  for (int i = 0; i < 3; ++i) queue.queueWork(item([&] { ran.up(); }));
  wait(ran, 3);
  queue.shutdown();
  EXPECT_EQ(yields.calls(), 3);
}

TEST_F(WorkQueueTest, AThreadYieldsBehindTheRunAndBeforeItDropsTheItem) {
  bool hasRun = false;  // the pool's one thread's, as the next two, until it has ended
  bool hadRun = false;
  int alive = 0;
  const EventAt yields("sched_yield", [&] {
    hadRun = hasRun;
    alive = itemsAlive;
  });
  WorkQueue queue(1);
  queue.queueWork(item([&] { hasRun = true; }));
  queue.queueWork(item([&] { ran.up(); }));
  queue.start();
  wait(ran);
  queue.shutdown();
  EXPECT_TRUE(hadRun);
  EXPECT_EQ(alive, 2) << "the one that has run, and the one that waits";
}

TEST_F(WorkQueueTest, AnItemThatTheHostHoldsOutlivesItsRun) {
  int runs = 0;
  const shared_ptr<WorkItem> held = item([&] { ++runs, ran.up(); });
  WorkQueue queue(1);
  queue.start();
  queue.queueWork(held);
  queue.queueWork(held);
  wait(ran, 2);
  queue.shutdown();
  EXPECT_EQ(runs, 2);
  EXPECT_EQ(itemsAlive, 1);
}

/// What the producers queue, and what has become of it. The items of one producer are numbered in their
/// order.
class Ledger {
 public:
  explicit Ledger(int itemsOfEach)
      : started(PRODUCERS, std::vector<int>(static_cast<std::size_t>(itemsOfEach))) {}

  /// An item has started. By then all that its producer queued before it have been taken; those that have not
  /// started are in the hands of the other threads, one each at most.
  void start(std::size_t producer, std::size_t number) {
    const std::lock_guard<std::mutex> hold(lock);
    ++started[producer][number];
    int overtaken = 0;
    for (std::size_t i = 0; i < number; ++i) overtaken += started[producer][i] == 0;
    mostOvertaken = std::max(mostOvertaken, overtaken);
  }

  std::vector<std::vector<int>> started;  ///< for each item how often
  int mostOvertaken = 0;

 private:
  std::mutex lock;  // guards the rest
};

TEST_F(WorkQueueTest, EightProducersAndFourThreadsTakeInOrderAndRunEachOnce) {
  constexpr int ITEMS = 500;
  Ledger ledger(ITEMS);
  WorkQueue queue(THREADS);
  EXPECT_TRUE(queue.start());
  std::vector<std::thread> producers;
  for (std::size_t producer = 0; producer < PRODUCERS; ++producer) {
    producers.emplace_back([&, producer] {
      for (std::size_t i = 0; i < ITEMS; ++i) {
        queue.queueWork(item([&, producer, i] {
          ledger.start(producer, i);
          ran.up();
        }));
      }
    });
  }
  for (std::thread& producer : producers) producer.join();
  wait(ran, PRODUCERS * ITEMS);
  queue.shutdown();
  EXPECT_THAT(ledger.started, Each(Each(1)));
  EXPECT_LT(ledger.mostOvertaken, THREADS);
  EXPECT_EQ(itemsAlive, 0);
}

TEST_F(WorkQueueTest, AStopInTheMiddleRunsNothingThatIsQueuedAfterIt) {
  std::atomic<int> queued{0};
  std::atomic<int> runs{0};
  std::atomic<int> lateRuns{0};
  const auto produce = [&](WorkQueue& queue) {
    for (int early = 0, late = 0; late < 50;) {
      const bool isLate = queue.isStopping();
      if (isLate) {
        ++late;
      } else if (++early > 2000) {
        sched_yield();
        continue;
      }
      ++queued;
      EXPECT_TRUE(queue.queueWork(item([&, isLate] { ++(isLate ? lateRuns : runs), ran.up(); })));
    }
  };
  {
    WorkQueue queue(THREADS);
    queue.start();
    std::vector<std::thread> producers;
    for (int i = 0; i < PRODUCERS; ++i) producers.emplace_back(produce, std::ref(queue));
    wait(ran, 500);
    queue.shutdown();
    const int runsAtTheEnd = runs;
    for (std::thread& producer : producers) producer.join();
    EXPECT_EQ(runs, runsAtTheEnd);
    // What has not run waits, apart from what a thread had taken when the queue stopped.
    EXPECT_LE(itemsAlive, queued - runs);
    EXPECT_GE(itemsAlive, queued - runs - THREADS);
  }
  EXPECT_EQ(lateRuns, 0);
  EXPECT_GE(runs, 500);
  EXPECT_EQ(itemsAlive, 0);
}

TEST_F(WorkQueueTest, ShutdownEndsAnIdlePool) {
  WorkQueue queue(THREADS);
  EXPECT_TRUE(queue.start());
  queue.shutdown();
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(WorkQueueTest, ShutdownWaitsForTheItemsThatRun) {
  WorkQueue queue(THREADS);
  queue.start();
  occupy(&queue, THREADS);
  queue.shutdown();
  EXPECT_EQ(occupationsEnded, THREADS);
}

TEST_F(WorkQueueTest, ItemsThatWaitAtAShutdownAreReleasedUnrunByTheDestructor) {
  int runs = 0;
  {
    WorkQueue queue(THREADS);
    queue.start();
    occupy(&queue, THREADS);
    for (int i = 0; i < 10; ++i) queue.queueWork(item([&] { ++runs; }));
    queue.shutdown();
    EXPECT_EQ(itemsAlive, 10);
  }
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(itemsAlive, 0);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(WorkQueueTest, AnItemTakenWhileTheQueueStopsIsDroppedUnrun) {
  int runs = 0;
  {
    WorkQueue queue(THREADS);
    queue.start();
    for (int i = 0; i < THREADS; ++i) queue.queueWork(item([&] { ran.up(); }));
    wait(ran, THREADS);
    {
      const FailingCall nobodyIsWoken("sem_post");  // before the queue stops
      EXPECT_FALSE(queue.queueWork(item([&] { ++runs; })));
    }
    queue.shutdown();
  }
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(itemsAlive, 0);
}

TEST_F(WorkQueueTest, AnItemQueuedAfterAShutdownWaitsForTheDestructor) {
  int runs = 0;
  {
    WorkQueue queue(THREADS);
    queue.start();
    queue.shutdown();
    EXPECT_TRUE(queue.isStopping());
    EXPECT_TRUE(queue.queueWork(item([&] { ++runs; })));
    EXPECT_EQ(itemsAlive, 1);
  }
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(itemsAlive, 0);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(WorkQueueTest, AQueueThatWasNeverStartedReleasesItsItemsInSilence) {
  {
    WorkQueue queue(THREADS);
    queue.queueWork(item([] {}));
    EXPECT_EQ(itemsAlive, 1);
  }
  EXPECT_EQ(itemsAlive, 0);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(WorkQueueTest, APoolOfNoThreadsStartsAndRunsNothing) {
  for (const int threads : {0, -1}) {
    WorkQueue queue(threads);
    EXPECT_TRUE(queue.start());
    EXPECT_TRUE(queue.queueWork(item([] { ADD_FAILURE(); })));
    queue.shutdown();
  }
  EXPECT_EQ(itemsAlive, 0);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(WorkQueueTest, WithoutOneThreadTheOthersServeTheQueue) {
  for (int failing = 1; failing <= 3; ++failing) {
    WorkQueue queue(3);
    {
      const FailingCall fails("pthread_create", failing);
      EXPECT_FALSE(queue.start());
    }
    occupy(&queue, 2);  // both of those that did start
    queue.shutdown();
  }
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(WorkQueueTest, QueueingReleasesItsLockBeforeItWakesAThread) {
  WorkQueue queue(0);
  const shared_ptr<WorkItem> first = item([] {});
  const FailingCall locks("pthread_mutex_lock", FailingCall::NEVER);
  int taken = -1;
  int tried = -1;
  const EventAtPost raised([&] {
    taken = locks.calls();
    auto* const latest = reinterpret_cast<pthread_mutex_t*>(locks.number());
    if (latest != nullptr) tried = pthread_mutex_trylock(latest);
    if (tried == 0) pthread_mutex_unlock(latest);
  });
  EXPECT_TRUE(queue.queueWork(first));
  EXPECT_EQ(taken, 1);
  EXPECT_EQ(tried, 0) << "the thread that wakes would find it held";
}

TEST_F(WorkQueueTest, DequeueingTakesTheOldestItem) {
  WorkQueue queue(0);
  const shared_ptr<WorkItem> first = item([] {});
  const shared_ptr<WorkItem> second = item([] {});
  queue.queueWork(first);
  queue.queueWork(second);
  EXPECT_EQ(queue.dequeueWork(), first);
  EXPECT_EQ(queue.dequeueWork(), second);
}

void ignore(int) {}

TEST_F(WorkQueueTest, AnInterruptedWaitYieldsAPointerToNoObject) {
  struct sigaction interrupting {};
  struct sigaction former {};
  interrupting.sa_handler = ignore;  // without SA_RESTART
  sigaction(SIGUSR1, &interrupting, &former);

  WorkQueue queue(0);
  std::atomic<bool> returned{false};
  std::thread waiting([&] {
    shared_ptr<WorkItem> nothing = queue.dequeueWork();
    EXPECT_EQ(nothing.get(), nullptr);
    nothing.putRef();  // which it may, since there is a count
    returned = true;
  });
  while (!returned) {
    pthread_kill(waiting.native_handle(), SIGUSR1);
    sched_yield();
  }
  waiting.join();
  sigaction(SIGUSR1, &former, nullptr);
}

TEST_F(WorkQueueTest, APointerToNoObjectEndsTheThreadThatTakesIt) {
  WorkQueue queue(1);
  queue.start();
  queue.queueWork(shared_ptr<WorkItem>());
  int runs = 0;
  queue.queueWork(item([&] { ++runs; }));  // no thread is left for it
  queue.shutdown();
  EXPECT_EQ(runs, 0);
}

using WorkQueueDeathTest = WorkQueueTest;

/// In a process of its own, since the pool's threads stay behind: whether the destructor logs its line,
/// releases what waits and returns.
[[noreturn]] void destroyWithoutShutdown(const LogCapture& log) {
  alignas(WorkQueue) static unsigned char memory[sizeof(WorkQueue)];  // which the threads may still look at
  auto* const queue = new (memory) WorkQueue(2);
  queue->start();
  queue->~WorkQueue();
  const std::vector<std::string> expected = {"[LHU] Workqueue went out of scope without calling shutdown!"};
  _exit(log.critical() == expected && log.debug().empty() ? 0 : 1);
}

TEST_F(WorkQueueDeathTest, DestructionWithoutShutdownLogsAndNeitherStopsNorJoins) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(destroyWithoutShutdown(log), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace test
