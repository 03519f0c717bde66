#include "phone/media/Canvas.h"

#include <algorithm>

namespace phone {

Mask::Mask(int width, int height, bool wraps)
    : width_(width),
      height_(height),
      wraps_(wraps),
      shares_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

Canvas::Canvas(int width, int height, bool wraps)
    : width_(width),
      height_(height),
      wraps_(wraps),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

void Canvas::fill(Colour colour) {
  std::fill(pixels_.begin(), pixels_.end(), Pixel{colour.y, colour.u, colour.v, 255});
}

void Canvas::blend(std::size_t pixel, Colour colour, int share) {
  Pixel& p = pixels_[pixel];
  p = {mix(p.y, colour.y, share), mix(p.u, colour.u, share), mix(p.v, colour.v, share),
       mix(p.opacity, 255, share)};
}

void Canvas::paint(const Mask& mask, Colour colour, float opacity) {
  for (std::size_t i = 0; i < pixels_.size(); ++i) {
    const int share = mask.shares()[i];
    if (share > 0) blend(i, colour, static_cast<int>(static_cast<float>(share) * opacity));
  }
}

Sprite::Sprite(const Canvas& canvas) {
  for (Plane& plane : planes_) {
    const int step = &plane == planes_ ? 1 : 2;
    plane.width = canvas.width() / step;
    plane.height = canvas.height() / step;
    for (int y = 0; y < plane.height; ++y) {
      for (int x = 0; x < plane.width; ++x) {
        int value = 0;
        int opacity = 0;
        for (int i = 0; i < step * step; ++i) {
          const Canvas::Pixel& p = canvas.at(x * step + i % step, y * step + i / step);
          value += &plane == planes_ ? p.y : &plane == planes_ + 1 ? p.u : p.v;
          opacity += p.opacity;
        }
        plane.values.push_back(static_cast<std::uint8_t>(value / (step * step)));
        plane.rest.push_back(static_cast<std::uint8_t>(255 - opacity / (step * step)));
      }
    }
  }
}

void Sprite::draw(const YuvView& picture, int x, int y) const {
  for (int i = 0; i < 3; ++i) {
    const Plane& plane = planes_[i];
    const int step = i == 0 ? 1 : 2;
    const int left = (x & ~1) / step;
    const int top = (y & ~1) / step;
    const int first = std::max(0, -left);
    const int last = std::min(plane.width, picture.width / step - left);
    for (int row = std::max(0, -top); row < std::min(plane.height, picture.height / step - top); ++row) {
      const std::size_t at = static_cast<std::size_t>(row) * static_cast<std::size_t>(plane.width);
      const std::uint8_t* values = plane.values.data() + at;
      const std::uint8_t* rest = plane.rest.data() + at;
      std::uint8_t* to = picture.row(i, top + row) + left;
      for (int column = first; column < last; ++column) {
        const unsigned int shine = rest[column] * to[column] + 128U;
        to[column] = static_cast<std::uint8_t>(values[column] + ((shine + (shine >> 8)) >> 8));
      }
    }
  }
}

}  // namespace phone
