#include "phone/media/CoverArt.h"

#include <array>
#include <cmath>

#include "phone/media/Png.h"
#include "phone/media/Shapes.h"

namespace phone {
namespace {

using Rgb = std::array<float, 3>;

struct Design {
  Rgb skyAbove, skyBelow, sun, hillFar, hillNear;
  Point sunAt;  // in parts of the picture's size
  float sunRadius;
  float waves;  // hills across the picture
};

constexpr std::array<Design, 3> DESIGNS{{
    {{28, 34, 84}, {246, 122, 92}, {255, 214, 132}, {122, 52, 96}, {44, 22, 58}, {0.5F, 0.52F}, 0.2F, 1.3F},
    {{6, 12, 30}, {24, 74, 110}, {226, 238, 248}, {16, 52, 80}, {8, 22, 38}, {0.7F, 0.28F}, 0.1F, 2.1F},
    {{250, 222, 176},
     {126, 196, 190},
     {240, 110, 80},
     {46, 132, 138},
     {18, 74, 92},
     {0.34F, 0.4F},
     0.14F,
     3.2F},
}};

Rgb blend(const Rgb& below, const Rgb& above, float share) {
  Rgb result{};
  for (std::size_t i = 0; i < 3; ++i) result[i] = below[i] + (above[i] - below[i]) * share;
  return result;
}

float smooth(float distance) { return static_cast<float>(coverage(distance)) / 256; }

Rgb pixelOf(const Design& design, Point at, float size) {
  const Point p = at * (1 / size);
  Rgb pixel = blend(design.skyAbove, design.skyBelow, std::min(p.y * 1.3F, 1.0F));
  const float fromSun = length(p - design.sunAt) - design.sunRadius;
  pixel = blend(pixel, design.sun, 0.3F * std::exp(-9 * std::max(fromSun, 0.0F)));
  pixel = blend(pixel, design.sun, smooth(fromSun * size));
  const float far = 0.66F + 0.05F * std::sin(6.2831853F * design.waves * p.x + 0.6F);
  const float near = 0.8F + 0.06F * std::sin(6.2831853F * (design.waves * 0.7F * p.x + 0.35F));
  pixel = blend(pixel, design.hillFar, smooth((far - p.y) * size));
  return blend(pixel, design.hillNear, smooth((near - p.y) * size));
}

}  // namespace

std::vector<std::uint8_t> drawCover(unsigned int design, int size) {
  std::vector<std::uint8_t> rgb;
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      const Point at{static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F};
      for (const float part : pixelOf(DESIGNS[design % DESIGNS.size()], at, static_cast<float>(size))) {
        rgb.push_back(static_cast<std::uint8_t>(std::lround(part)));
      }
    }
  }
  return encodePng(rgb.data(), size, size);
}

}  // namespace phone
