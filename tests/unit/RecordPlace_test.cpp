#include "RecordPlace.h"

#include <gmock/gmock.h>

#include <thread>

#include "Bytes.h"

// Which bytes go to an open place, and which to the memory of the BIO.

namespace test {
namespace {

using testing::Each;

struct RecordPlaceTest : testing::Test {
  BIO* const memory = BIO_new(RecordPlace::memoryBio());
  RecordPlace place;
  Bytes wanted = filled(8, 0xCC);
  const Bytes record = bytes("17 03 03 00 01 AA");
  const Bytes alert = bytes("15 03 03 00 01 BB");

  ~RecordPlaceTest() override {
    place.close();
    BIO_free(memory);
  }
  void writes(const Bytes& data) const {
    EXPECT_EQ(BIO_write(memory, data.data(), static_cast<int>(data.size())), static_cast<int>(data.size()));
  }
  Bytes inMemory() const {
    Bytes content = filled(BIO_ctrl_pending(memory), 0);
    BIO_read(memory, content.data(), static_cast<int>(content.size()));
    return content;
  }
};

TEST_F(RecordPlaceTest, WithoutAPlaceWhatIsWrittenIsKeptInMemory) {
  place.open(memory);
  writes(record);
  writes(alert);
  EXPECT_EQ(inMemory(), record + alert);
  unsigned char byte = 0;
  EXPECT_EQ(BIO_read(memory, &byte, 1), -1);
  EXPECT_TRUE(BIO_should_retry(memory));
}

TEST_F(RecordPlaceTest, ARecordGoesToTheOpenPlace) {
  place.open(memory, wanted.data(), 8);
  writes(record);
  EXPECT_EQ(place.filled(), 6);
  EXPECT_EQ(wanted, record + bytes("CC CC"));
  EXPECT_EQ(inMemory(), Bytes());
  EXPECT_EQ(place.take(wanted.data(), 6), 6);
  EXPECT_EQ(place.take(wanted.data(), 6), 0) << "it has been fetched";
}

TEST_F(RecordPlaceTest, WhatAnotherThreadWritesIsDropped) {
  place.open(memory, wanted.data(), 8);
  std::thread([&] {
    writes(record);
    writes(alert);
  }).join();
  EXPECT_EQ(place.filled(), 0);
  EXPECT_THAT(wanted, Each(0xCC));
  EXPECT_EQ(inMemory(), Bytes());
}

TEST_F(RecordPlaceTest, AnAlertGoesToMemoryAndTheRecordBehindItToo) {
  place.open(memory, wanted.data(), 8);
  writes(alert);
  writes(record);
  EXPECT_EQ(place.filled(), 0);
  EXPECT_THAT(wanted, Each(0xCC));
  EXPECT_EQ(inMemory(), alert + record);
}

TEST_F(RecordPlaceTest, ASecondRecordGoesToMemory) {
  place.open(memory, wanted.data(), 8);
  writes(record);
  writes(bytes("17 01"));
  EXPECT_EQ(place.filled(), 6);
  EXPECT_EQ(wanted, record + bytes("CC CC"));
  EXPECT_EQ(inMemory(), bytes("17 01"));
}

TEST_F(RecordPlaceTest, ARecordThatDoesNotFitGoesToMemory) {
  place.open(memory, wanted.data(), 5);
  writes(record);
  EXPECT_THAT(wanted, Each(0xCC));
  EXPECT_EQ(inMemory(), record);
}

TEST_F(RecordPlaceTest, WhatIsWrittenToAnotherBioIsDropped) {
  BIO* const other = BIO_new(RecordPlace::memoryBio());
  place.open(other, wanted.data(), 8);
  writes(record);
  EXPECT_THAT(wanted, Each(0xCC));
  EXPECT_EQ(inMemory(), Bytes());
  BIO_free(other);
}

TEST_F(RecordPlaceTest, WhatIsWrittenBehindTheEndIsDropped) {
  place.open(memory, wanted.data(), 8);
  place.close();
  writes(record);
  EXPECT_THAT(wanted, Each(0xCC));
  EXPECT_EQ(inMemory(), Bytes());
}

TEST_F(RecordPlaceTest, APlaceThatIsFullStaysUntilItIsEmptied) {
  place.open(memory, wanted.data(), 8);
  writes(record);
  place.close();
  Bytes later = filled(8, 0xDD);
  place.open(memory, later.data(), 8);
  writes(record);
  EXPECT_THAT(later, Each(0xDD));
  EXPECT_EQ(inMemory(), record);
  EXPECT_EQ(place.take(wanted.data(), 6), 6);
  writes(record);
  EXPECT_THAT(later, Each(0xDD)) << "what was told when it was full is no place";
}

TEST_F(RecordPlaceTest, WhatIsForgottenIsNotTaken) {
  place.open(memory, wanted.data(), 8);
  writes(record);
  place.forget();
  EXPECT_EQ(place.filled(), 0);
  EXPECT_EQ(place.take(wanted.data(), 6), 0);
}

TEST_F(RecordPlaceTest, ARecordIsTakenInPiecesToElsewhere) {
  place.open(memory, wanted.data(), 8);
  writes(record);
  Bytes taken = filled(6, 0);
  EXPECT_EQ(place.take(taken.data(), 2), 2);
  EXPECT_EQ(place.take(taken.data() + 2, 100), 4);
  EXPECT_EQ(taken, record);
}

}  // namespace
}  // namespace test
