// The library's log functions: every argument is formatted, so that a bad one is found, and nothing is
// printed.

#include <cstdarg>
#include <cstdio>

#include "Log.h"

namespace {

void format(const char* text, va_list arguments) __attribute__((format(printf, 1, 0)));

void format(const char* text, va_list arguments) {
  char line[1024];
  vsnprintf(line, sizeof line, text, arguments);
}

}  // namespace

void print_debug_i(const char* text, ...) {
  va_list arguments;
  va_start(arguments, text);
  format(text, arguments);
  va_end(arguments);
}

void print_critical_i(const char* text, ...) {
  va_list arguments;
  va_start(arguments, text);
  format(text, arguments);
  va_end(arguments);
}
