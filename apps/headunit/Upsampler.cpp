#include "headunit/Upsampler.h"

#include <algorithm>
#include <cmath>

namespace headunit {
namespace {

constexpr double PI = 3.14159265358979323846;

double sinc(double x) { return x == 0 ? 1 : std::sin(PI * x) / (PI * x); }

double blackman(double position) {
  return 0.42 + 0.5 * std::cos(PI * position) + 0.08 * std::cos(2 * PI * position);
}

}  // namespace

Upsampler::Upsampler() {
  for (int phase = 0; phase < FACTOR; ++phase) {
    std::array<double, TAPS> taps{};
    double sum = 0;
    for (int i = 0; i < TAPS; ++i) {
      // How far the result lies from the sample that is i before the latest, in source samples.
      const double distance = i - TAPS / 2 + static_cast<double>(phase) / FACTOR;
      taps[static_cast<std::size_t>(i)] = sinc(distance) * blackman(distance / (TAPS / 2.0));
      sum += taps[static_cast<std::size_t>(i)];
    }
    auto& row = coefficients_[static_cast<std::size_t>(phase)];
    std::int32_t rest = 1 << SHIFT;
    for (std::size_t i = 0; i < row.size(); ++i) {
      row[i] = static_cast<std::int32_t>(std::lround(taps[i] / sum * (1 << SHIFT)));
      rest -= row[i];
    }
    row[TAPS / 2] += rest;  // rounding must not change a constant signal
  }
}

void Upsampler::push(std::int16_t sample) {
  std::copy_backward(history_.begin(), history_.end() - 1, history_.end());
  history_[0] = sample;
}

std::int32_t Upsampler::at(int phase) const {
  const auto& row = coefficients_[static_cast<std::size_t>(phase)];
  std::int64_t sum = 0;
  for (std::size_t i = 0; i < row.size(); ++i) sum += static_cast<std::int64_t>(row[i]) * history_[i];
  return static_cast<std::int32_t>((sum + (1 << (SHIFT - 1))) >> SHIFT);
}

}  // namespace headunit
