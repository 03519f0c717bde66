#pragma once

#include <gmock/gmock.h>

#include "LogCapture.h"
#include "Message.h"
#include "Wire.h"

namespace test {

/// The fixture for records alone: bytes by hand on the one side, fields on the other.
struct RecordTest : testing::Test {
  LogCapture log;

  /// Parses a record as the library does.
  template <class Record>
  bool reads(const Bytes& body, Record* record) {
    return parseRecord(body.data(), static_cast<unsigned int>(body.size()), record);
  }

  template <class Record>
  bool reads(const char* hex) {
    Record record;
    return reads(bytes(hex), &record);
  }

  /// The record in `hex`, which must be one.
  template <class Record>
  Record read(const char* hex) {
    Record record;
    EXPECT_TRUE(reads(bytes(hex), &record)) << hex;
    return record;
  }

  /// The same, of a record that phones send; as in the library, what the schema does not know is forgotten.
  template <class Record>
  Record receive(const char* hex) {
    Record record;
    const Bytes body = bytes(hex);
    EXPECT_TRUE(readRecord(body.data(), static_cast<unsigned int>(body.size()), &record)) << hex;
    return record;
  }
};

/// The bytes of `record`, of which no required field need be set.
inline Bytes written(const google::protobuf::MessageLite& record) {
  const std::string serialized = record.SerializePartialAsString();
  return Bytes(serialized.data(), serialized.size());
}

}  // namespace test
