#include "headunit/Printable.h"

#include "headunit/Shortened.h"

namespace headunit {
namespace {

bool isControl(unsigned char byte) { return byte < 0x20 || byte == 0x7F; }

// U+0080 to U+009F, which some terminals take for the beginning of an escape sequence.
bool isLongControl(unsigned char lead, unsigned char next) {
  return lead == 0xC2 && next >= 0x80 && next <= 0x9F;
}

}  // namespace

std::string printable(const std::string& words) {
  const std::string start = shortened(words);
  std::string text;
  unsigned char before = 0;
  for (const char character : start) {
    const auto byte = static_cast<unsigned char>(character);
    if (isLongControl(before, byte)) text.pop_back();
    text += isControl(byte) || isLongControl(before, byte) ? '?' : character;
    before = byte;
  }
  return text;
}

}  // namespace headunit
