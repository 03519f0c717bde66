#include "headunit/strip/Words.h"

#include <glib.h>

#include <cmath>
#include <cstdio>
#include <memory>

#include "headunit/Shortened.h"

namespace headunit::strip {
namespace {

using Owned = std::unique_ptr<gchar, decltype(&g_free)>;

template <class... Values>
std::string printed(const char* format, Values... values) {
  char text[48];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

std::string encoded(gunichar character) {
  gchar bytes[6];
  const gint length = g_unichar_to_utf8(character, bytes);
  return std::string(bytes, static_cast<std::size_t>(length));
}

// A zero byte, a line's end and the like have no place in one line.
bool isBreak(gunichar character) {
  return g_unichar_iscntrl(character) != 0 || character == 0x2028 || character == 0x2029;
}

}  // namespace

std::string drawable(const std::string& bytes) {
  const std::string part = shortened(bytes);
  const Owned valid(g_utf8_make_valid(part.data(), static_cast<gssize>(part.size())), &g_free);
  std::string text;
  for (const gchar* at = valid.get(); *at != '\0'; at = g_utf8_next_char(at)) {
    const gunichar character = g_utf8_get_char(at);
    text += isBreak(character) ? " " : encoded(character);
  }
  return text;
}

std::string distanceWords(int meters) {
  if (meters < 1000) return printed("%d m", meters);
  if (meters < 9950) return printed("%.1f km", meters / 1000.0);
  return printed("%d km", static_cast<int>(std::lround(meters / 1000.0)));
}

std::string waitWords(int seconds) {
  if (seconds < 60) return printed("%d s", seconds);
  const int minutes = static_cast<int>(std::lround(seconds / 60.0));
  if (minutes < 60) return printed("%d min", minutes);
  return printed("%d h %d min", minutes / 60, minutes % 60);
}

std::string clockWords(unsigned int seconds) {
  const unsigned int minutes = seconds / 60;
  if (minutes < 60) return printed("%u:%02u", minutes, seconds % 60);
  return printed("%u:%02u:%02u", minutes / 60, minutes % 60, seconds % 60);
}

std::string frequencyWords(int hertz) {
  return hertz >= 30'000'000 ? printed("%.1f MHz", hertz / 1e6) : printed("%d kHz", hertz / 1000);
}

std::string initials(const std::string& name) {
  std::string first;
  std::string last;
  bool begins = true;
  const std::string text = drawable(name);
  for (const gchar* at = text.c_str(); *at != '\0'; at = g_utf8_next_char(at)) {
    const gunichar character = g_utf8_get_char(at);
    if (begins && g_unichar_isalpha(character) != 0) {
      (first.empty() ? first : last) = encoded(g_unichar_toupper(character));
    }
    begins = g_unichar_isspace(character) != 0;
  }
  return first + last;
}

}  // namespace headunit::strip
