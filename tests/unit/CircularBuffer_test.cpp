#include "CircularBuffer.h"

#include <gmock/gmock.h>

#include <cstddef>

#include "Bytes.h"

namespace test {
namespace {

static_assert(offsetof(CircularBuffer, capacity) == 0);
static_assert(offsetof(CircularBuffer, used) == 4);
static_assert(offsetof(CircularBuffer, readOffset) == 8);
static_assert(offsetof(CircularBuffer, storage) == 16 || sizeof(void*) == 4);

/// A ring of 8 bytes with a guard behind it.
struct CircularBufferTest : testing::Test {
  unsigned char storage[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0xEE, 0xEE, 0xEE, 0xEE};
  CircularBuffer ring;

  CircularBufferTest() {
    ring.capacity = 8;
    ring.storage = storage;
  }
  ~CircularBufferTest() override { EXPECT_EQ(Bytes(storage + 8, 4), bytes("EE EE EE EE")); }

  unsigned int put(const char* hex) {
    Bytes source = bytes(hex);
    return ring.put(source.data(), static_cast<unsigned int>(source.size()));
  }
  Bytes get(unsigned int length) {
    Bytes destination = filled(length, 0xCC);
    destination.resize(ring.get(destination.data(), length));
    return destination;
  }
};

TEST_F(CircularBufferTest, GivesBackWhatWasPutInOrder) {
  EXPECT_EQ(put("01 02 03"), 3U);
  EXPECT_EQ(ring.used, 3);
  EXPECT_EQ(get(2), bytes("01 02"));
  EXPECT_EQ(get(2), bytes("03"));
  EXPECT_EQ(ring.used, 0);
}

TEST_F(CircularBufferTest, WithoutStorageTakesAndGivesNothing) {
  ring.storage = nullptr;
  EXPECT_EQ(put("01"), 0U);
  EXPECT_EQ(get(1), bytes(""));
}

TEST_F(CircularBufferTest, StoresAsMuchAsFits) {
  EXPECT_EQ(put("01 02 03 04 05 06"), 6U);
  EXPECT_EQ(put("07 08 09 0A"), 2U);
  EXPECT_EQ(get(8), bytes("01 02 03 04 05 06 07 08"));
}

TEST_F(CircularBufferTest, AFullRingTakesNothing) {
  put("01 02 03 04 05 06 07 08");
  EXPECT_EQ(put("09"), 0U);
  EXPECT_EQ(ring.used, 8);
}

TEST_F(CircularBufferTest, AnEmptyRingGivesNothing) { EXPECT_EQ(get(4), bytes("")); }

TEST_F(CircularBufferTest, PutWrapsAround) {
  put("01 02 03 04 05 06");
  get(4);
  EXPECT_EQ(put("11 12 13 14 15"), 5U);
  EXPECT_EQ(Bytes(storage, 8), bytes("13 14 15 04 05 06 11 12"));
  EXPECT_EQ(ring.used, 7);
}

TEST_F(CircularBufferTest, GetWrapsAround) {
  put("01 02 03 04 05 06");
  get(4);
  put("11 12 13 14 15");
  EXPECT_EQ(get(7), bytes("05 06 11 12 13 14 15"));
  EXPECT_EQ(ring.readOffset, 3U);
}

TEST_F(CircularBufferTest, AReadUpToTheEndLeavesTheOffsetAtTheCapacity) {
  put("01 02 03 04 05 06 07 08");
  get(8);
  EXPECT_EQ(ring.readOffset, 8U);
  EXPECT_EQ(ring.used, 0);
}

TEST_F(CircularBufferTest, AfterAReadUpToTheEndGoesOnAtTheBeginning) {
  put("01 02 03 04 05 06 07 08");
  get(8);
  EXPECT_EQ(put("21 22 23"), 3U);
  EXPECT_EQ(Bytes(storage, 3), bytes("21 22 23"));
  EXPECT_EQ(get(3), bytes("21 22 23"));
  EXPECT_EQ(ring.readOffset, 3U);
}

TEST_F(CircularBufferTest, AShortReadAfterAReadUpToTheEndBeginsAtTheBeginning) {
  put("01 02 03 04 05 06 07 08");
  get(8);
  put("21 22 23");
  EXPECT_EQ(get(1), bytes("21"));
  EXPECT_EQ(ring.readOffset, 1U);
  EXPECT_EQ(ring.used, 2);
}

TEST_F(CircularBufferTest, AReadThatExactlyReachesTheEndDoesNotWrap) {
  put("01 02 03 04 05 06");
  get(4);
  put("07 08");
  EXPECT_EQ(get(4), bytes("05 06 07 08"));
  EXPECT_EQ(ring.readOffset, 8U);
}

TEST_F(CircularBufferTest, KeepsALongStreamInOrderAtOddSizes) {
  const Bytes sent = pattern(997);
  Bytes received;
  std::size_t offset = 0;
  for (unsigned int round = 0; received.size() < sent.size(); ++round) {
    Bytes piece = part(sent, offset, round % 7 + 1);
    offset += ring.put(piece.data(), static_cast<unsigned int>(piece.size()));
    received = received + get(round % 5 + 1);
  }
  EXPECT_EQ(received, sent);
}

TEST(CircularBufferDeathTest, StorageOfNoCapacityIsNoRing) {
#if defined(__x86_64__) || defined(__i386__)
  unsigned char storage = 0;
  CircularBuffer ring;
  ring.storage = &storage;
  EXPECT_DEATH(ring.put(&storage, 1), "");  // a division by zero
#else
  GTEST_SKIP() << "here the processor lets a division by zero pass";
#endif
}

}  // namespace
}  // namespace test
