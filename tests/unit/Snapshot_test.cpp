#include "Snapshot.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>
#include <vector>

namespace test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

using Numbers = std::vector<int>;

TEST(SnapshotTest, HoldsADefaultValueAtFirst) {
  const Snapshot<Numbers> snapshot;
  EXPECT_THAT(*snapshot.get(), IsEmpty());
}

TEST(SnapshotTest, GivesTheValueLastSet) {
  Snapshot<Numbers> snapshot;
  snapshot.set(new Numbers{1});
  snapshot.set(new Numbers{2, 3});
  EXPECT_THAT(*snapshot.get(), ElementsAre(2, 3));
}

TEST(SnapshotTest, AReaderKeepsTheValueThatItGot) {
  Snapshot<Numbers> snapshot;
  snapshot.set(new Numbers{1});
  const shared_ptr<const Numbers> seen = snapshot.get();
  snapshot.set(new Numbers{2});
  EXPECT_THAT(*seen, ElementsAre(1));
}

TEST(SnapshotTest, ReadersNeverSeeHalfAValue) {
  Snapshot<Numbers> snapshot;
  std::atomic<bool> done{false};
  std::thread writer([&] {
    for (int i = 1; i <= 2000; ++i) snapshot.set(new Numbers(50, i));
    done = true;
  });
  int last = 0;
  while (!done) {
    const shared_ptr<const Numbers> seen = snapshot.get();
    if (seen->empty()) continue;
    EXPECT_THAT(*seen, Each(seen->front()));
    EXPECT_GE(seen->front(), last);
    last = seen->front();
  }
  writer.join();
  EXPECT_EQ(snapshot.get()->front(), 2000);
}

}  // namespace
}  // namespace test
