#include "phone/services/TurnImage.h"

#include "phone/media/Png.h"
#include "phone/media/Shapes.h"

namespace phone {

namespace {

constexpr int largest = 1024;
constexpr std::uint8_t ground[3] = {18, 26, 38};
constexpr std::uint8_t ink[3] = {94, 224, 173};

struct Arrow {
  Capsule stem, branch, leftBarb, rightBarb;

  int at(Point p) const { return coverage(std::min({stem(p), branch(p), leftBarb(p), rightBarb(p)})); }
};

Point towards(float degrees) {
  const float radians = degrees * 3.14159265F / 180.0F;
  return {std::sin(radians), -std::cos(radians)};
}

Arrow arrowFor(float angle, float width, float height) {
  const float size = std::min(width, height);
  const bool sharp = std::abs(angle) > 100;  // bends higher up and aside, so that the tip clears the stem
  const Point bend = sharp ? Point{towards(angle).x * -0.2F, -0.26F} * size : Point{0, 0};
  const Point middle = Point{width / 2, height / 2} + bend;
  const float stroke = size / 16;
  const Point tip = middle + towards(angle) * (size * (sharp ? 0.5F : 0.36F));
  const auto barb = [&](float turn) {
    return Capsule{tip, tip + towards(angle + turn) * (size * 0.17F), stroke};
  };
  return {
      {{middle.x, height / 2 + size * 0.42F}, middle, stroke}, {middle, tip, stroke}, barb(140), barb(-140)};
}

}  // namespace

Bytes drawTurn(int angle, int width, int height) {
  if (width <= 0 || height <= 0 || width > largest || height > largest) return {};
  const Arrow arrow =
      arrowFor(static_cast<float>(angle), static_cast<float>(width), static_cast<float>(height));
  Bytes rgb;
  rgb.reserve(static_cast<std::size_t>(width * height) * 3);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int share = arrow.at({static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F});
      for (int i = 0; i < 3; ++i) {
        rgb.push_back(static_cast<std::uint8_t>((ground[i] * (256 - share) + ink[i] * share) / 256));
      }
    }
  }
  return encodePng(rgb.data(), width, height);
}

}  // namespace phone
