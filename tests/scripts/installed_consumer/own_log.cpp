#include <Log.h>

#include <cstdarg>
#include <cstdio>

void print_debug_i(const char*, ...) {}

void print_critical_i(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  vprintf(format, arguments);
  va_end(arguments);
  puts("");
}
