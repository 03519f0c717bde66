#include "headunit/SlowWork.h"

#include <utility>

namespace headunit {
namespace {

class Item : public WorkItem {
 public:
  explicit Item(std::function<void()> work) : work_(std::move(work)) {}
  void run() override { work_(); }

 private:
  const std::function<void()> work_;
};

}  // namespace

void SlowWork::post(std::function<void()> work) {
  queue_.queueWork(::shared_ptr<WorkItem>(new Item(std::move(work))));
}

}  // namespace headunit
