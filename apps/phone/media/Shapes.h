#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace phone {

struct Point {
  float x = 0;
  float y = 0;
};

inline Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
inline Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
inline Point operator*(Point a, float factor) { return {a.x * factor, a.y * factor}; }
inline float dot(Point a, Point b) { return a.x * b.x + a.y * b.y; }
inline float length(Point a) { return std::sqrt(dot(a, a)); }

/// Whole pixels, right and bottom not included.
struct Box {
  int left = 0, top = 0, right = 0, bottom = 0;
};

/// The pixels within `margin` of the rectangle from `low` to `high`.
inline Box boxAround(Point low, Point high, float margin) {
  const auto down = [](float v) { return static_cast<int>(std::floor(v)); };
  return {down(low.x - margin) - 1, down(low.y - margin) - 1, down(high.x + margin) + 2,
          down(high.y + margin) + 2};
}

// A shape tells the distance of a point from its edge, negative inside, and the box that holds it. An edge
// drawn from that distance is smooth without any supersampling.

/// A straight stroke with round ends; a disc when both ends are one point.
struct Capsule {
  Point from, to;
  float radius = 0;

  float operator()(Point p) const {
    const Point along = to - from;
    const float square = dot(along, along);
    const float part = square > 0 ? std::clamp(dot(p - from, along) / square, 0.0F, 1.0F) : 0.0F;
    return length(p - from - along * part) - radius;
  }

  Box box() const {
    return boxAround({std::min(from.x, to.x), std::min(from.y, to.y)},
                     {std::max(from.x, to.x), std::max(from.y, to.y)}, radius);
  }
};

struct RoundedBox {
  Point low, high;
  float corner = 0;

  float operator()(Point p) const {
    const Point half = (high - low) * 0.5F;
    const Point centre = (low + high) * 0.5F;
    const Point q{std::fabs(p.x - centre.x) - half.x + corner, std::fabs(p.y - centre.y) - half.y + corner};
    const Point outside{std::max(q.x, 0.0F), std::max(q.y, 0.0F)};
    return length(outside) + std::min(std::max(q.x, q.y), 0.0F) - corner;
  }

  Box box() const { return boxAround(low, high, 0); }
};

struct Ring {
  Point centre;
  float radius = 0;
  float halfWidth = 0;

  float operator()(Point p) const { return std::fabs(length(p - centre) - radius) - halfWidth; }
  Box box() const { return boxAround(centre, centre, radius + halfWidth); }
};

/// Four corners in order; the outline may be dented.
struct Quad {
  std::array<Point, 4> corners;

  float operator()(Point p) const {
    float nearest = dot(p - corners[0], p - corners[0]);
    bool inside = false;
    for (std::size_t i = 0, j = 3; i < 4; j = i++) {
      const Point a = corners[i];
      const Point edge = corners[j] - a;
      const Point rest = p - a - edge * std::clamp(dot(p - a, edge) / dot(edge, edge), 0.0F, 1.0F);
      nearest = std::min(nearest, dot(rest, rest));
      const bool crosses = (a.y > p.y) != (corners[j].y > p.y);
      if (crosses && p.x < edge.x * (p.y - a.y) / edge.y + a.x) inside = !inside;
    }
    return inside ? -std::sqrt(nearest) : std::sqrt(nearest);
  }

  Box box() const {
    Point low = corners[0];
    Point high = low;
    for (const Point& corner : corners) {
      low = {std::min(low.x, corner.x), std::min(low.y, corner.y)};
      high = {std::max(high.x, corner.x), std::max(high.y, corner.y)};
    }
    return boxAround(low, high, 0);
  }
};

/// How much of a pixel lies inside an edge at this distance from its centre, in 256ths.
inline int coverage(float distance) {
  return static_cast<int>(std::clamp(0.5F - distance, 0.0F, 1.0F) * 256.0F);
}

}  // namespace phone
