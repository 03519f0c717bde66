#include "shared_ptr.h"

#include <gmock/gmock.h>

#include <cstring>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace test {
namespace {

// Hosts and library exchange it by value: two pointers, the count first.
static_assert(sizeof(shared_ptr<int>) == 2 * sizeof(void*));
static_assert(std::is_standard_layout_v<shared_ptr<int>>);
static_assert(!std::is_convertible_v<int*, shared_ptr<int>>, "taking ownership is visible");

/// Counts its destructions.
struct Guest {
  explicit Guest(int* counter) : gone(counter) {}
  virtual ~Guest() { ++*gone; }
  int* gone;
};

struct SpecialGuest : Guest {
  SpecialGuest(int* counter, int* specialCounter) : Guest(counter), specialGone(specialCounter) {}
  ~SpecialGuest() override { ++*specialGone; }
  int* specialGone;
};

struct SharedPtrTest : testing::Test {
  int gone = 0;
};

template <class T>
const unsigned int* countOf(const shared_ptr<T>& pointer) {
  const unsigned int* count;
  memcpy(&count, &pointer, sizeof count);
  return count;
}

TEST_F(SharedPtrTest, IsEmptyAtFirst) {
  const shared_ptr<Guest> pointer;
  EXPECT_EQ(pointer.get(), nullptr);
  EXPECT_EQ(countOf(pointer), nullptr);
  EXPECT_TRUE(pointer == nullptr);
  EXPECT_FALSE(pointer);
}

TEST_F(SharedPtrTest, AnEmptyOneIsDestroyedAndCopiedWithoutHarm) {
  const shared_ptr<Guest> pointer;
  const shared_ptr<Guest> copy(pointer);
  shared_ptr<Guest> assigned;
  assigned = copy;
  EXPECT_EQ(countOf(assigned), nullptr);
}

TEST_F(SharedPtrTest, CountsItsCopiesInAWordApartFromTheObject) {
  const shared_ptr<Guest> first(new Guest(&gone));
  EXPECT_EQ(*countOf(first), 1U);
  {
    const shared_ptr<Guest> second(first);
    EXPECT_EQ(*countOf(first), 2U);
    EXPECT_EQ(countOf(second), countOf(first));
    EXPECT_EQ(second.get(), first.get());
  }
  EXPECT_EQ(*countOf(first), 1U);
  EXPECT_EQ(gone, 0);
}

TEST_F(SharedPtrTest, TheLastReferenceDestroysTheObject) {
  {
    const shared_ptr<Guest> first(new Guest(&gone));
    const shared_ptr<Guest> second(first);
  }
  EXPECT_EQ(gone, 1);
}

TEST_F(SharedPtrTest, DestroysThroughAVirtualDestructor) {
  int specialGone = 0;
  { const shared_ptr<Guest> pointer(new SpecialGuest(&gone, &specialGone)); }
  EXPECT_EQ(gone, 1);
  EXPECT_EQ(specialGone, 1);
}

TEST_F(SharedPtrTest, ReadsTheObject) {
  const shared_ptr<Guest> pointer(new Guest(&gone));
  EXPECT_EQ(pointer->gone, &gone);
  EXPECT_EQ((*pointer).gone, &gone);
  EXPECT_TRUE(pointer);
  EXPECT_TRUE(pointer != nullptr);
}

TEST_F(SharedPtrTest, AssignmentReleasesWhatItHeldAndSharesTheOther) {
  shared_ptr<Guest> left(new Guest(&gone));
  const shared_ptr<Guest> right(new Guest(&gone));
  left = right;
  EXPECT_EQ(gone, 1);
  EXPECT_EQ(left.get(), right.get());
  EXPECT_EQ(*countOf(right), 2U);
}

TEST_F(SharedPtrTest, AssigningAnEmptyOneReleases) {
  shared_ptr<Guest> pointer(new Guest(&gone));
  pointer = shared_ptr<Guest>();
  EXPECT_EQ(gone, 1);
  EXPECT_EQ(countOf(pointer), nullptr);
}

TEST_F(SharedPtrTest, MoveConstructionTakesTheReferenceOver) {
  shared_ptr<Guest> from(new Guest(&gone));
  Guest* const object = from.get();
  const shared_ptr<Guest> to(std::move(from));
  EXPECT_EQ(to.get(), object);
  EXPECT_EQ(*countOf(to), 1U);
  EXPECT_EQ(from.get(), nullptr);
  EXPECT_EQ(countOf(from), nullptr);
  EXPECT_EQ(gone, 0);
}

TEST_F(SharedPtrTest, MoveAssignmentReleasesWhatItHeldAndTakesTheReferenceOver) {
  int otherGone = 0;
  shared_ptr<Guest> from(new Guest(&otherGone));
  const shared_ptr<Guest> keeper(from);
  shared_ptr<Guest> to(new Guest(&gone));
  to = std::move(from);
  EXPECT_EQ(gone, 1);
  EXPECT_EQ(to.get(), keeper.get());
  EXPECT_EQ(*countOf(keeper), 2U);
  EXPECT_EQ(from.get(), nullptr);
  EXPECT_EQ(otherGone, 0);
}

TEST_F(SharedPtrTest, MovingAnEmptyOneLeavesBothEmpty) {
  shared_ptr<Guest> from;
  shared_ptr<Guest> to(new Guest(&gone));
  to = std::move(from);
  EXPECT_EQ(gone, 1);
  EXPECT_EQ(countOf(to), nullptr);
  EXPECT_EQ(countOf(from), nullptr);
}

TEST_F(SharedPtrTest, MovingTheLastReferenceToItselfChangesNothing) {
  shared_ptr<Guest> pointer(new Guest(&gone));
  shared_ptr<Guest>& same = pointer;
  pointer = std::move(same);
  EXPECT_EQ(gone, 0);
  EXPECT_EQ(*countOf(pointer), 1U);
}

TEST_F(SharedPtrTest, AssigningTheLastReferenceToItselfDestroysTheObject) {
  shared_ptr<Guest> pointer(new Guest(&gone));
  const shared_ptr<Guest>& same = pointer;
  pointer = same;
  EXPECT_EQ(gone, 1);
}

TEST_F(SharedPtrTest, AssigningOneOfTwoReferencesToItselfChangesNothing) {
  shared_ptr<Guest> pointer(new Guest(&gone));
  const shared_ptr<Guest> other(pointer);
  const shared_ptr<Guest>& same = pointer;
  pointer = same;
  EXPECT_EQ(gone, 0);
  EXPECT_EQ(*countOf(pointer), 2U);
}

TEST_F(SharedPtrTest, PutRefOfTheLastReferenceEmptiesThePointer) {
  shared_ptr<Guest> pointer(new Guest(&gone));
  pointer.putRef();
  EXPECT_EQ(gone, 1);
  EXPECT_EQ(pointer.get(), nullptr);
  EXPECT_EQ(countOf(pointer), nullptr);
}

TEST_F(SharedPtrTest, PutRefOfOneOfSeveralOnlyCountsDown) {
  const shared_ptr<Guest> keeper(new Guest(&gone));
  shared_ptr<Guest> pointer(keeper);
  shared_ptr<Guest> third(keeper);
  third.putRef();
  EXPECT_EQ(*countOf(keeper), 2U);
  EXPECT_EQ(third.get(), keeper.get()) << "the variable stays as it is";
  new (&third) shared_ptr<Guest>();  // its reference is spent
  EXPECT_EQ(gone, 0);
}

TEST_F(SharedPtrTest, ACountWithoutAnObjectIsDeletedAlone) {
  shared_ptr<Guest> pointer(static_cast<Guest*>(nullptr));
  EXPECT_EQ(*countOf(pointer), 1U);
  { const shared_ptr<Guest> copy(pointer); }
  EXPECT_EQ(*countOf(pointer), 1U);
  pointer.putRef();  // a leak or a second release would show under AddressSanitizer
  EXPECT_EQ(countOf(pointer), nullptr);
}

TEST_F(SharedPtrTest, ComparesByObject) {
  const shared_ptr<Guest> one(new Guest(&gone));
  const shared_ptr<Guest> same(one);
  const shared_ptr<Guest> other(new Guest(&gone));
  EXPECT_TRUE(one == same);
  EXPECT_TRUE(one != other);
}

TEST_F(SharedPtrTest, CopiesComeAndGoOnManyThreadsAtOnce) {
  {
    const shared_ptr<Guest> shared(new Guest(&gone));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([copy = shared] {
        for (int round = 0; round < 20000; ++round) {
          const shared_ptr<Guest> another(copy);
          shared_ptr<Guest> assigned;
          assigned = another;
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    threads.clear();
    EXPECT_EQ(*countOf(shared), 1U);
  }
  EXPECT_EQ(gone, 1);
}

}  // namespace
}  // namespace test
