#include "IoBuffer.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <cstring>
#include <new>

#include "Bytes.h"

namespace test {
namespace {

// The order and width of the fields are part of the public interface.
static_assert(offsetof(IoBuffer, data) == 0);
static_assert(offsetof(IoBuffer, capacity) == sizeof(void*));
static_assert(offsetof(IoBuffer, start) == sizeof(void*) + 4);
static_assert(offsetof(IoBuffer, end) == sizeof(void*) + 8);
static_assert(sizeof(IoBuffer) ==
              (sizeof(void*) + 12 + alignof(void*) - 1) / alignof(void*) * alignof(void*));

void expectContent(const IoBuffer& buffer, unsigned int capacity, unsigned int start, unsigned int end) {
  EXPECT_EQ(buffer.capacity, capacity);
  EXPECT_EQ(buffer.start, start);
  EXPECT_EQ(buffer.end, end);
}

TEST(IoBufferTest, IsEmptyAtFirst) {
  const IoBuffer buffer;
  EXPECT_EQ(buffer.data, nullptr);
  expectContent(buffer, 0, 0, 0);
  EXPECT_EQ(buffer.content(), nullptr);
  EXPECT_EQ(buffer.size(), 0U);
}

TEST(IoBufferTest, HasAllOfItsSizeAsContent) {
  IoBuffer buffer(5);
  expectContent(buffer, 5, 0, 5);
  memset(buffer.data, 0xAB, 5);
  EXPECT_EQ(Bytes(buffer.content(), buffer.size()), bytes("AB AB AB AB AB"));
}

TEST(IoBufferTest, ResizeGivesNewContentWhateverWasThere) {
  IoBuffer buffer(5);
  buffer.start = 2;
  buffer.end = 3;
  buffer.resize(9);
  expectContent(buffer, 9, 0, 9);
  memset(buffer.data, 1, 9);
}

TEST(IoBufferTest, ResizeToTheSizeThatItHasMakesAllOfItContent) {
  IoBuffer buffer(5);
  buffer.start = 2;
  buffer.end = 3;
  buffer.resize(5);
  expectContent(buffer, 5, 0, 5);
  memset(buffer.data, 1, 5);
}

TEST(IoBufferTest, ResizeToNothingHasNoContent) {
  IoBuffer buffer(5);
  buffer.resize(0);
  expectContent(buffer, 0, 0, 0);
  EXPECT_NE(buffer.data, nullptr) << "it is what malloc gives for no bytes";
}

TEST(IoBufferTest, NarrowsWithoutACopy) {
  IoBuffer buffer(4);
  memcpy(buffer.data, "\x01\x02\x03\x04", 4);
  buffer.start = 1;
  buffer.end = 3;
  EXPECT_EQ(Bytes(buffer.content(), buffer.size()), bytes("02 03"));
  EXPECT_EQ(buffer.content(), buffer.data + 1);
}

TEST(IoBufferTest, LeavesAllItsFieldsZeroWhenItIsDestroyed) {
  alignas(IoBuffer) unsigned char memory[sizeof(IoBuffer)] = {};
  auto* const buffer = new (memory) IoBuffer(5);
  buffer->start = 2;
  ASSERT_NE(Bytes(memory, sizeof memory), filled(sizeof memory, 0));
  buffer->~IoBuffer();
  EXPECT_EQ(Bytes(memory, sizeof memory), filled(sizeof memory, 0));
}

TEST(IoBufferTest, TakesAndReturnsStorageOfMalloc) {
  IoBuffer buffer;
  buffer.data = static_cast<unsigned char*>(malloc(3));
  buffer.capacity = buffer.end = 3;
  buffer.resize(6);
  unsigned char* const taken = buffer.data;
  buffer.data = nullptr;
  free(taken);  // under AddressSanitizer, a mismatch of the allocator would show
  EXPECT_EQ(buffer.capacity, 6U);
}

}  // namespace
}  // namespace test
