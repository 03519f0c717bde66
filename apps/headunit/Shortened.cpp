#include "headunit/Shortened.h"

namespace headunit {
namespace {

constexpr std::size_t MOST_BYTES = 240;
constexpr std::size_t LONGEST_CHARACTER = 4;

bool isContinued(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Bytes that are no characters at all are cut anywhere.
std::size_t startOfCharacter(const std::string& text, std::size_t at) {
  for (std::size_t back = 0; back < LONGEST_CHARACTER; ++back) {
    if (!isContinued(text[at - back])) return at - back;
  }
  return at;
}

}  // namespace

std::string shortened(const std::string& text) {
  if (text.size() <= MOST_BYTES) return text;
  return text.substr(0, startOfCharacter(text, MOST_BYTES)) + "\u2026";
}

}  // namespace headunit
