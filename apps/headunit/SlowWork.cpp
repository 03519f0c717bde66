#include "headunit/SlowWork.h"

#include <spdlog/spdlog.h>

#include <exception>
#include <utility>

namespace headunit {
namespace {

class Item : public WorkItem {
 public:
  explicit Item(std::function<void()> work) : work_(std::move(work)) {}
  // One piece that cannot be done costs no more than itself.
  void run() override {
    try {
      work_();
    } catch (const std::exception& error) {
      spdlog::error("A picture or a file is left out: {}.", error.what());
    }
  }

 private:
  const std::function<void()> work_;
};

}  // namespace

SlowWork::SlowWork(int threads) : queue_(threads) {
  if (!queue_.start()) spdlog::error("There are too few threads: images may not be shown.");
}

void SlowWork::post(std::function<void()> work) {
  queue_.queueWork(::shared_ptr<WorkItem>(new Item(std::move(work))));
}

}  // namespace headunit
