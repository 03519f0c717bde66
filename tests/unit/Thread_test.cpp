#include "Thread.h"

#include <gmock/gmock.h>
#include <sched.h>

#include <atomic>
#include <cstdio>
#include <memory>

#include "FailingCalls.h"
#include "LogCapture.h"
#include "Semaphore.h"
#include "ThreadDefaults.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Runs until it is let go, as often as it is started.
struct Worker : Thread {
  Semaphore running;
  Semaphore letGo;
  std::atomic<int> rounds{0};
  pthread_t seenFromInside{};

  void run() override {
    seenFromInside = pthread_self();
    ++rounds;
    running.up();
    while (!letGo.down()) {
    }
  }
};

struct ThreadTest : testing::Test {
  LogCapture log;
};

std::string goneWhileRunning(pthread_t id) {
  char text[100];
  snprintf(text, sizeof text, "[LHU] Thread %lx went out of scope while running!", id);
  return text;
}

TEST_F(ThreadTest, RunsItsBodyOnAThreadOfItsOwn) {
  Worker worker;
  worker.letGo.up();
  EXPECT_TRUE(worker.start());
  EXPECT_TRUE(worker.join());
  EXPECT_EQ(worker.rounds, 1);
  EXPECT_TRUE(pthread_equal(worker.seenFromInside, worker.id()));
  EXPECT_FALSE(pthread_equal(worker.seenFromInside, pthread_self()));
}

TEST_F(ThreadTest, JoinWithoutAStartIsRefused) {
  Worker worker;
  EXPECT_FALSE(worker.join());
}

TEST_F(ThreadTest, ASecondJoinIsRefused) {
  Worker worker;
  worker.letGo.up();
  worker.start();
  EXPECT_TRUE(worker.join());
  EXPECT_FALSE(worker.join());
}

TEST_F(ThreadTest, StartsAgainAfterAJoin) {
  Worker worker;
  for (int i = 0; i < 2; ++i) {
    worker.letGo.up();
    EXPECT_TRUE(worker.start());
    EXPECT_TRUE(worker.join());
  }
  EXPECT_EQ(worker.rounds, 2);
}

TEST_F(ThreadTest, AFailedStartOwesNoJoin) {
  {
    Worker worker;
    const FailingCall failing("pthread_create");
    EXPECT_FALSE(worker.start());
    EXPECT_FALSE(worker.join());
  }
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(ThreadTest, AFailedJoinIsStillOwed) {
  Worker worker;
  worker.letGo.up();
  worker.start();
  {
    const FailingCall failing("pthread_join");
    EXPECT_FALSE(worker.join());
  }
  EXPECT_TRUE(worker.join());
}

TEST_F(ThreadTest, DestructionBeforeAJoinIsLoggedThoughTheBodyHasEnded) {
  auto worker = std::make_unique<Worker>();
  worker->letGo.up();
  worker->start();
  const pthread_t id = worker->id();
  pthread_join(id, nullptr);  // behind the object's back: it still believes that it owes a join
  worker.reset();
  EXPECT_THAT(log.all(), ElementsAre("critical " + goneWhileRunning(id)));
}

TEST_F(ThreadTest, DestructionAfterAJoinIsSilent) {
  {
    Worker worker;
    worker.letGo.up();
    worker.start();
    worker.join();
  }
  { Worker neverStarted; }
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(ThreadTest, YieldPassesOnTheResultOfThePlatform) {
  Worker worker;
  EXPECT_EQ(worker.yield(), 0);
  const FailingCall failing("sched_yield");
  EXPECT_EQ(worker.yield(), -1);
  EXPECT_EQ(failing.calls(), 1);
}

TEST_F(ThreadTest, IsGivenNeitherANameNorAPriority) {
  const ThreadDefaults defaults;
  Worker worker;
  EXPECT_TRUE(worker.start());
  while (!worker.running.down()) {
  }
  defaults.expectOf(worker.id());
  worker.letGo.up();
  EXPECT_TRUE(worker.join());
}

/// A worker that is known to run.
struct RunningThreadTest : ThreadTest {
  Worker worker;

  RunningThreadTest() {
    worker.start();
    while (!worker.running.down()) {
    }
  }
  ~RunningThreadTest() override {
    worker.letGo.up();
    worker.join();
  }
};

TEST_F(RunningThreadTest, TakesAName) {
  EXPECT_TRUE(worker.setName("reader"));
  char name[16] = {};
  pthread_getname_np(worker.id(), name, sizeof name);
  EXPECT_STREQ(name, "reader");
}

TEST_F(RunningThreadTest, ANameThatIsTooLongIsRefused) { EXPECT_FALSE(worker.setName("sixteen letters!")); }

TEST_F(RunningThreadTest, APriorityOutOfRangeIsRefusedAndChangesNothing) {
  EXPECT_FALSE(worker.setPriority(sched_get_priority_max(SCHED_FIFO) + 1));
  int policy = -1;
  sched_param parameters{};
  pthread_getschedparam(worker.id(), &policy, &parameters);
  EXPECT_EQ(policy, SCHED_OTHER);
  EXPECT_EQ(parameters.sched_priority, 0);
}

TEST_F(RunningThreadTest, APrioritySwitchesToRealTimeScheduling) {
  const FailingCall calls("pthread_setschedparam", FailingCall::NEVER);
  EXPECT_TRUE(worker.setPriority(7));
  EXPECT_EQ(calls.calls(), 1);
  EXPECT_EQ(calls.number(), SCHED_FIFO * 1000 + 7);
}

TEST_F(RunningThreadTest, APriorityIsRefusedWithoutTheRight) {
  const FailingCall refused("pthread_setschedparam");
  EXPECT_FALSE(worker.setPriority(7));
  EXPECT_EQ(refused.calls(), 1);
}

}  // namespace
}  // namespace test
