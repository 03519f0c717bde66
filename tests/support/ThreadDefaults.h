#pragma once

#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>

#include <string>

#include "FailingCalls.h"

namespace test {

/// What a thread is like that nobody gave a name or a priority: as long as this object lives, threads that
/// are started inherit a name of its own, and every call for a priority is counted.
class ThreadDefaults {
 public:
  ThreadDefaults() : former(nameOf(pthread_self())) { pthread_setname_np(pthread_self(), "inherited"); }
  ~ThreadDefaults() { pthread_setname_np(pthread_self(), former.c_str()); }
  ThreadDefaults(const ThreadDefaults&) = delete;
  ThreadDefaults& operator=(const ThreadDefaults&) = delete;

  /// Expects this of a thread that runs, once whoever started it is done with it.
  void expectOf(pthread_t thread) const {
    EXPECT_EQ(nameOf(thread), "inherited");
    EXPECT_EQ(priorities.calls(), 0);
    int policy = -1;
    sched_param parameters{};
    pthread_getschedparam(thread, &policy, &parameters);
    EXPECT_EQ(policy, SCHED_OTHER);
    EXPECT_EQ(parameters.sched_priority, 0);
  }

 private:
  static std::string nameOf(pthread_t thread) {
    char name[16] = {};
    pthread_getname_np(thread, name, sizeof name);
    return name;
  }

  const std::string former;
  const FailingCall priorities{"pthread_setschedparam", FailingCall::NEVER};
};

}  // namespace test
