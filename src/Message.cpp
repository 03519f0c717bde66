#include "Message.h"

#include <climits>

#include "Log.h"

void logParseFailure(const char* file, int line) { print_debug_i("[LHU] Failed to parse proto at %s:%d", file, line); }

bool parseRecord(const void* body, unsigned int size, google::protobuf::MessageLite* record) {
  if (size > INT_MAX) return false;
  // Partial, and the test apart: the strict form writes a line of its own to stderr, which is the host's.
  return record->ParsePartialFromArray(body, static_cast<int>(size)) && record->IsInitialized();
}
