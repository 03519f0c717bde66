#include "Message.h"

#include <climits>

#include "Log.h"

void logParseFailure(const char* file, int line) {
  print_debug_i("[LHU] Failed to parse proto at %s:%d", file, line);
}

bool parseFields(const void* body, unsigned int size, google::protobuf::MessageLite* record) {
  // Partial: the strict form writes a line of its own to stderr, which is the host's.
  return size <= INT_MAX && record->ParsePartialFromArray(body, static_cast<int>(size));
}

bool parseRecord(const void* body, unsigned int size, google::protobuf::MessageLite* record) {
  return parseFields(body, size, record) && record->IsInitialized();
}
