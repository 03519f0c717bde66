#include "Message.h"

#include <climits>

#include "Log.h"
#include "UnsentBytes.h"

namespace {

/// What a record may lack of its announced length; the rest of it reads as zeros.
constexpr unsigned int MOST_UNSENT = 1U << 20;

}  // namespace

void logParseFailure(const char* file, int line) {
  print_debug_i("[LHU] Failed to parse proto at %s:%d", file, line);
}

bool parseFields(const void* body, unsigned int size, google::protobuf::MessageLite* record) {
  // Partial: the strict form writes a line of its own to stderr, which is the host's.
  return size <= INT_MAX && UnsentBytes::among(body, size) <= MOST_UNSENT &&
         record->ParsePartialFromArray(body, static_cast<int>(size));
}

bool parseRecord(const void* body, unsigned int size, google::protobuf::MessageLite* record) {
  return parseFields(body, size, record) && record->IsInitialized();
}
