// The log functions for a host that wants none of its own: one line a message on stderr.

#include <cstdarg>
#include <cstdio>

#include "Log.h"

namespace {

void printLine(const char* format, va_list arguments) __attribute__((format(printf, 1, 0)));

void printLine(const char* format, va_list arguments) {
  char line[1024];
  vsnprintf(line, sizeof line, format, arguments);
  fprintf(stderr, "%s\n", line);  // one call, so that the lines of several threads do not mix
}

}  // namespace

void print_debug_i(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  printLine(format, arguments);
  va_end(arguments);
}

void print_critical_i(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  printLine(format, arguments);
  va_end(arguments);
}
