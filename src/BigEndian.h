#pragma once

#include <cstdint>

// Integers on the wire are big-endian. This is the one place that knows how.

inline std::uint16_t readBigEndian16(const unsigned char* bytes) {
  return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

inline std::uint32_t readBigEndian32(const unsigned char* bytes) {
  return static_cast<std::uint32_t>(readBigEndian16(bytes)) << 16 | readBigEndian16(bytes + 2);
}

inline std::uint64_t readBigEndian64(const unsigned char* bytes) {
  return static_cast<std::uint64_t>(readBigEndian32(bytes)) << 32 | readBigEndian32(bytes + 4);
}

inline void writeBigEndian16(unsigned char* bytes, std::uint16_t value) {
  bytes[0] = static_cast<unsigned char>(value >> 8);
  bytes[1] = static_cast<unsigned char>(value);
}

inline void writeBigEndian32(unsigned char* bytes, std::uint32_t value) {
  writeBigEndian16(bytes, static_cast<std::uint16_t>(value >> 16));
  writeBigEndian16(bytes + 2, static_cast<std::uint16_t>(value));
}

inline void writeBigEndian64(unsigned char* bytes, std::uint64_t value) {
  writeBigEndian32(bytes, static_cast<std::uint32_t>(value >> 32));
  writeBigEndian32(bytes + 4, static_cast<std::uint32_t>(value));
}
