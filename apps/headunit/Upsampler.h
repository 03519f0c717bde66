#pragma once

#include <array>
#include <cstdint>

namespace headunit {

/// Makes three samples of each one, with the frequencies that the three would add filtered out: 16 kHz to 48
/// kHz. A constant signal stays exactly what it is.
class Upsampler {
 public:
  static constexpr int FACTOR = 3;

  Upsampler();

  /// The next source sample.
  void push(std::int16_t sample);

  /// The sample at `phase`, 0 to 2, behind the source sample that is DELAY before the latest.
  std::int32_t at(int phase) const;

 private:
  static constexpr int TAPS = 16;  // source samples that each result depends on
  static constexpr int SHIFT = 15;

  std::array<std::array<std::int32_t, TAPS>, FACTOR> coefficients_{};
  std::array<std::int16_t, TAPS> history_{};  // newest first
};

}  // namespace headunit
