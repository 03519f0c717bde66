#include "headunit/services/ServiceContext.h"

namespace headunit {

std::string forScreen(const std::string& text) {
  constexpr std::size_t MOST_BYTES = 240;
  if (text.size() <= MOST_BYTES) return text;
  std::size_t end = MOST_BYTES;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;  // not inside a character
  return text.substr(0, end) + "\u2026";
}

}  // namespace headunit
