#pragma once

#include "ForgetUnknownFields.h"
#include "IoBuffer.h"
#include "protos.pb.h"
#include "shared_ptr.h"

// A message is two type bytes and a body, which is a serialized record or, for a few types, raw bytes. These
// operations read one; a message too short for what is to be read is refused like a record that does not
// parse.

/// Bytes of the message's type.
constexpr unsigned int MESSAGE_TYPE_SIZE = 2;

/// The first byte behind the type.
inline unsigned char* messageBody(const shared_ptr<IoBuffer>& message) {
  return message->content() + MESSAGE_TYPE_SIZE;
}

/// The number of bytes behind the type.
inline unsigned int messageBodySize(const shared_ptr<IoBuffer>& message) {
  return message->size() - MESSAGE_TYPE_SIZE;
}

/// Logs that what arrived is no record, and where in the library that was found.
void logParseFailure(const char* file, int line);

/// Parses `size` bytes at `body`; false if they are no record. Required fields may be missing.
[[nodiscard]] bool parseFields(const void* body, unsigned int size, google::protobuf::MessageLite* record);

/// The same; false also if a required field is missing, at any depth.
[[nodiscard]] bool parseRecord(const void* body, unsigned int size, google::protobuf::MessageLite* record);

/// Whether `size` is at least `least`; logs with the caller's file and line if not.
[[nodiscard]] inline bool isLongEnough(unsigned int size, unsigned int least,
                                       const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  if (size >= least) return true;
  logParseFailure(file, line);
  return false;
}

/// Reads the record in `size` body bytes. On false it has logged, with the caller's file and line. The record
/// keeps no fields that the schema does not know, nor does any record inside it.
template <class Record>
[[nodiscard]] bool readRecord(const void* body, unsigned int size, Record* record,
                              const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  const bool parsed = parseRecord(body, size, record);
  if (parsed) {
    forgetUnknownFields(record);
  } else {
    logParseFailure(file, line);
  }
  return parsed;
}

/// Reads the record behind the message's type.
template <class Record>
[[nodiscard]] bool readRecord(const shared_ptr<IoBuffer>& message, Record* record,
                              const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  return readRecord(messageBody(message), messageBodySize(message), record, file, line);
}

/// Reads the record behind the message's type and gives it to `handler`, whose status it returns; without a
/// record STATUS_UNEXPECTED_MESSAGE. A line of an endpoint's message table.
template <class Endpoint, class Record>
[[nodiscard]] int handleRecord(Endpoint* endpoint, const shared_ptr<IoBuffer>& message,
                               int (Endpoint::*handler)(const Record&), const char* file = __builtin_FILE(),
                               int line = __builtin_LINE()) {
  Record record;
  if (!readRecord(message, &record, file, line)) return STATUS_UNEXPECTED_MESSAGE;
  return (endpoint->*handler)(record);
}
