#include "Message.h"

#include <climits>
#include <cstring>

#include "Log.h"

namespace {

/// Whether a record ends in more zeros than any phone sends. Bytes that were announced and never sent are
/// zero and take up no memory, but a parser copies what a field is said to hold: gigabytes of nothing, for a
/// length and a handful of bytes. Only inside a field can a record end in zeros at all, since no field begins
/// with one.
bool endsInNothing(const void* body, unsigned int size) {
  constexpr unsigned int MOST_ZEROS = 1U << 20;
  if (size <= MOST_ZEROS) return false;
  const auto* const tail = static_cast<const unsigned char*>(body) + (size - MOST_ZEROS);
  return *tail == 0 && memcmp(tail, tail + 1, MOST_ZEROS - 1) == 0;
}

}  // namespace

void logParseFailure(const char* file, int line) {
  print_debug_i("[LHU] Failed to parse proto at %s:%d", file, line);
}

bool parseFields(const void* body, unsigned int size, google::protobuf::MessageLite* record) {
  // Partial: the strict form writes a line of its own to stderr, which is the host's.
  return size <= INT_MAX && !endsInNothing(body, size) &&
         record->ParsePartialFromArray(body, static_cast<int>(size));
}

bool parseRecord(const void* body, unsigned int size, google::protobuf::MessageLite* record) {
  return parseFields(body, size, record) && record->IsInitialized();
}
