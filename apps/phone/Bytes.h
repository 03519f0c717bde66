#ifndef PHONE_BYTES_H
#define PHONE_BYTES_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace phone {

using Bytes = std::vector<std::uint8_t>;

/// Every number on the link outside the records is big-endian.
/// The reader trusts its caller to have looked at the length first.
template <class Unsigned>
Unsigned readBigEndian(const std::uint8_t* from) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < sizeof(Unsigned); ++i) value = (value << 8) | from[i];
  return static_cast<Unsigned>(value);
}

template <class Unsigned>
void appendBigEndian(Bytes* to, Unsigned value) {
  for (std::size_t i = sizeof(Unsigned); i-- > 0;) {
    to->push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i)));
  }
}

/// A number inside a record: seven bits a byte, the lowest first.
inline void appendVarint(Bytes* to, std::uint64_t value) {
  for (; value > 0x7f; value >>= 7) to->push_back(static_cast<std::uint8_t>(value | 0x80));
  to->push_back(static_cast<std::uint8_t>(value));
}

inline void append(Bytes* to, const Bytes& more) { to->insert(to->end(), more.begin(), more.end()); }

}  // namespace phone

#endif
