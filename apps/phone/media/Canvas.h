#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "phone/media/Shapes.h"
#include "phone/media/YuvView.h"

namespace phone {

/// A colour as video stores it.
struct Colour {
  std::uint8_t y = 16, u = 128, v = 128;
};

/// From 0xRRGGBB, by the matrix of standard-definition video.
constexpr Colour colour(std::uint32_t rgb) {
  const int r = static_cast<int>(rgb >> 16 & 0xff);
  const int g = static_cast<int>(rgb >> 8 & 0xff);
  const int b = static_cast<int>(rgb & 0xff);
  return {static_cast<std::uint8_t>(((66 * r + 129 * g + 25 * b + 128) >> 8) + 16),
          static_cast<std::uint8_t>((-38 * r - 74 * g + 112 * b + 128 + (128 << 8)) >> 8),
          static_cast<std::uint8_t>((112 * r - 94 * g - 18 * b + 128 + (128 << 8)) >> 8)};
}

/// `above` over `below`, where `share` of 256 is covered.
inline std::uint8_t mix(int below, int above, int share) {
  return static_cast<std::uint8_t>((below * (256 - share) + above * share + 128) >> 8);
}

/// How much of each pixel is covered. What is added unites with what is there, so that strokes which overlap
/// show no seam.
class Mask {
 public:
  /// With `wraps`, what leaves at one edge comes in at the opposite one.
  Mask(int width, int height, bool wraps = false);

  template <class Shape>
  void add(const Shape& shape);

  int width() const { return width_; }
  int height() const { return height_; }
  const std::vector<std::uint16_t>& shares() const { return shares_; }

 private:
  int width_;
  int height_;
  bool wraps_;
  std::vector<std::uint16_t> shares_;  // of 256
};

/// A picture at full colour resolution on which the parts of the test picture are painted once. Starts out
/// transparent; colours are stored multiplied by their opacity.
class Canvas {
 public:
  Canvas(int width, int height, bool wraps = false);

  void fill(Colour colour);
  void paint(const Mask& mask, Colour colour, float opacity = 1);

  template <class Shape>
  void paint(const Shape& shape, Colour colour, float opacity = 1);

  int width() const { return width_; }
  int height() const { return height_; }

  struct Pixel {
    std::uint8_t y = 0, u = 0, v = 0, opacity = 0;
  };
  const Pixel& at(int x, int y) const { return pixels_[index(x, y)]; }

 private:
  std::size_t index(int x, int y) const { return static_cast<std::size_t>(y * width_ + x); }
  void blend(std::size_t pixel, Colour colour, int share);

  int width_;
  int height_;
  bool wraps_;
  std::vector<Pixel> pixels_;
};

/// A canvas made ready to be laid over video pictures quickly.
class Sprite {
 public:
  Sprite() = default;
  explicit Sprite(const Canvas& canvas);

  /// Lays the sprite over `picture`, what stands out of it being cut off. The position is brought to the even
  /// pixel at or before it, since two pixels share their colour.
  void draw(const YuvView& picture, int x, int y) const;

  int width() const { return planes_[0].width; }
  int height() const { return planes_[0].height; }

 private:
  struct Plane {
    int width = 0, height = 0;
    std::vector<std::uint8_t> values;  // multiplied by their opacity
    std::vector<std::uint8_t> rest;    // 255 less the opacity
  };
  Plane planes_[3];
};

/// Paints a shape straight onto a video picture.
template <class Shape>
void paint(const YuvView& picture, const Shape& shape, Colour colour, float opacity = 1);

/// Calls `visit(index, centre)` for every pixel of `box` on a surface of this size.
template <class Visit>
void forPixels(int width, int height, bool wraps, Box box, Visit visit) {
  if (!wraps) {
    box = {std::max(box.left, 0), std::max(box.top, 0), std::min(box.right, width),
           std::min(box.bottom, height)};
  }
  const auto wrap = [](int value, int size) { return (value % size + size) % size; };
  for (int y = box.top; y < box.bottom; ++y) {
    const int row = wrap(y, height) * width;
    for (int x = box.left; x < box.right; ++x) {
      const Point centre{static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F};
      visit(static_cast<std::size_t>(row + wrap(x, width)), centre);
    }
  }
}

template <class Shape>
void Mask::add(const Shape& shape) {
  forPixels(width_, height_, wraps_, shape.box(), [&](std::size_t pixel, Point centre) {
    const auto share = static_cast<std::uint16_t>(coverage(shape(centre)));
    shares_[pixel] = std::max(shares_[pixel], share);
  });
}

template <class Shape>
void Canvas::paint(const Shape& shape, Colour colour, float opacity) {
  forPixels(width_, height_, wraps_, shape.box(), [&](std::size_t pixel, Point centre) {
    blend(pixel, colour, static_cast<int>(static_cast<float>(coverage(shape(centre))) * opacity));
  });
}

template <class Shape>
void paint(const YuvView& picture, const Shape& shape, Colour colour, float opacity) {
  const Box box = shape.box();
  const auto share = [&](int x, int y) {
    const Point centre{static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F};
    return static_cast<int>(static_cast<float>(coverage(shape(centre))) * opacity);
  };
  for (int y = std::max(box.top, 0) & ~1; y < std::min(box.bottom, picture.height); y += 2) {
    for (int x = std::max(box.left, 0) & ~1; x < std::min(box.right, picture.width); x += 2) {
      int sum = 0;
      for (int i = 0; i < 4; ++i) {
        std::uint8_t& luma = picture.row(0, y + i / 2)[x + i % 2];
        const int covered = share(x + i % 2, y + i / 2);
        luma = mix(luma, colour.y, covered);
        sum += covered;
      }
      std::uint8_t& u = picture.row(1, y / 2)[x / 2];
      std::uint8_t& v = picture.row(2, y / 2)[x / 2];
      u = mix(u, colour.u, sum / 4);
      v = mix(v, colour.v, sum / 4);
    }
  }
}

}  // namespace phone
