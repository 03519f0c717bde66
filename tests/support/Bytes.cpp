#include "Bytes.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace test {

Bytes::Bytes(const void* data, std::size_t length)
    : vector(static_cast<const std::uint8_t*>(data), static_cast<const std::uint8_t*>(data) + length) {}

Bytes bytes(const std::string& hex) {
  std::string digits;
  for (const char c : hex) {
    if (std::isspace(static_cast<unsigned char>(c))) continue;
    if (!std::isxdigit(static_cast<unsigned char>(c))) throw std::invalid_argument("no hex digits: " + hex);
    digits += c;
  }
  if (digits.size() % 2 != 0) throw std::invalid_argument("half a byte: " + hex);
  Bytes result;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    result.push_back(static_cast<std::uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return result;
}

Bytes filled(std::size_t count, std::uint8_t value) { return Bytes(std::vector<std::uint8_t>(count, value)); }

Bytes pattern(std::size_t count, unsigned int seed) {
  Bytes result;
  result.reserve(count);
  // 251 is prime and no divisor of a fragment's size, so equal offsets of two fragments hold different bytes.
  for (std::size_t i = 0; i < count; ++i)
    result.push_back(static_cast<std::uint8_t>((i + 7 * seed + i / 251) % 251));
  return result;
}

Bytes operator+(const Bytes& left, const Bytes& right) {
  Bytes result = left;
  result.insert(result.end(), right.begin(), right.end());
  return result;
}

Bytes part(const Bytes& whole, std::size_t offset, std::size_t count) {
  const std::size_t from = std::min(offset, whole.size());
  const std::size_t length = std::min(count, whole.size() - from);
  return Bytes(whole.data() + from, length);
}

void PrintTo(const Bytes& value, std::ostream* out) {
  constexpr std::size_t END = 64;
  const char* const digits = "0123456789abcdef";
  *out << value.size() << " bytes:";
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (i == END && value.size() > 2 * END) {
      *out << " ...";
      i = value.size() - END;
    }
    *out << ' ' << digits[value[i] / 16] << digits[value[i] % 16];
  }
}

}  // namespace test
