#include "LogCapture.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

#include "Log.h"

namespace test {
namespace {

struct Line {
  bool isCritical;
  std::string text;
};

struct Store {
  std::mutex lock;  // guards the rest
  bool capturing = false;
  std::vector<Line> lines;
};

// Never destroyed: a thread that a failed test left behind may still log while the process ends.
Store& store() {
  static Store* const instance = new Store();
  return *instance;
}

std::string formatted(const char* format, va_list arguments) __attribute__((format(printf, 1, 0)));

std::string formatted(const char* format, va_list arguments) {
  char text[1024];
  vsnprintf(text, sizeof text, format, arguments);
  return text;
}

void record(bool isCritical, const std::string& text) {
  const std::lock_guard<std::mutex> guard(store().lock);
  if (store().capturing) store().lines.push_back({isCritical, text});
}

std::vector<std::string> texts(bool areCritical) {
  const std::lock_guard<std::mutex> guard(store().lock);
  std::vector<std::string> result;
  for (const Line& line : store().lines) {
    if (line.isCritical == areCritical) result.push_back(line.text);
  }
  return result;
}

void capture(bool on) {
  const std::lock_guard<std::mutex> guard(store().lock);
  store().lines.clear();
  store().capturing = on;
}

}  // namespace

LogCapture::LogCapture() { capture(true); }
LogCapture::~LogCapture() { capture(false); }
void LogCapture::clear() { capture(true); }

std::vector<std::string> LogCapture::critical() const { return texts(true); }
std::vector<std::string> LogCapture::debug() const { return texts(false); }

std::vector<std::string> LogCapture::all() const {
  const std::lock_guard<std::mutex> guard(store().lock);
  std::vector<std::string> result;
  for (const Line& line : store().lines)
    result.push_back((line.isCritical ? "critical " : "debug ") + line.text);
  return result;
}

}  // namespace test

void print_debug_i(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  test::record(false, test::formatted(format, arguments));
  va_end(arguments);
}

void print_critical_i(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  test::record(true, test::formatted(format, arguments));
  va_end(arguments);
}
