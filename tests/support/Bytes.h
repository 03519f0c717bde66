#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace test {

/// Bytes for golden vectors: a std::vector that a failed expectation prints in hex.
struct Bytes : std::vector<std::uint8_t> {
  using vector::vector;
  Bytes(const std::vector<std::uint8_t>& other) : vector(other) {}
  Bytes(const void* data, std::size_t length);
};

/// Hex digits in pairs, white space anywhere. Adjacent literals make a commented golden vector:
///     bytes("80 03"    // type
///           "08 02")   // status: ready
/// Throws std::invalid_argument on anything else.
Bytes bytes(const std::string& hex);

/// `count` times the byte `value`.
Bytes filled(std::size_t count, std::uint8_t value);

/// `count` bytes of which no two neighbours are equal, different for each `seed`: a displaced or exchanged
/// piece shows.
Bytes pattern(std::size_t count, unsigned int seed = 1);

Bytes operator+(const Bytes& left, const Bytes& right);

/// The `count` bytes from `offset` on, or as many of them as there are.
Bytes part(const Bytes& whole, std::size_t offset, std::size_t count = SIZE_MAX);

/// For gtest: hex, and of a long vector only both ends.
void PrintTo(const Bytes& value, std::ostream* out);

}  // namespace test
