#pragma once

#include <atomic>
#include <thread>
#include <vector>

namespace test {

/// Runs `body(number)` on `count` threads, and `meanwhile()` on this one at least once and until they have
/// ended.
template <class Body, class Meanwhile>
void onManyThreads(unsigned int count, const Body& body, const Meanwhile& meanwhile) {
  std::atomic<unsigned int> running{count};
  std::vector<std::thread> threads;
  for (unsigned int number = 0; number < count; ++number) {
    threads.emplace_back([&body, &running, number] {
      body(number);
      --running;
    });
  }
  do meanwhile();
  while (running > 0);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace test
