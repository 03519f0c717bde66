#pragma once

#include <cstdint>
#include <vector>

namespace phone {

/// A PNG file's bytes with a square landscape in the colours of number `design`, of which there are three;
/// the same each time.
std::vector<std::uint8_t> drawCover(unsigned int design, int size);

}  // namespace phone
