#pragma once

#include <cstdint>
#include <vector>

#include "phone/media/Canvas.h"

namespace phone {

/// An invented city seen from above, with a route through it that ends where it began. The map wraps round:
/// what leaves at one edge comes in at the opposite one.
class CityMap {
 public:
  /// `scale` is the size of one map unit in pixels; roads are about 18 units wide.
  explicit CityMap(float scale);

  /// Where somebody is who has followed the route for some time.
  struct Place {
    Point position;       // in pixels of the map, beyond its edges after the first round
    Point heading;        // of length 1
    std::size_t leg = 0;  // the straight stretch that the route is on, 0 to `LEGS` - 1
    float toTurn = 0;     // map units to the leg's end
  };
  static constexpr std::size_t LEGS = 6;

  Place placeAt(std::int64_t timeUs) const;

  /// Whether the turn at the end of a leg is to the right.
  static bool turnsRight(std::size_t leg);

  /// Fills the upper `rows` rows of the picture, with `position` at `centre`, which is in its pixels.
  void draw(const YuvView& picture, int rows, Point position, Point centre) const;

 private:
  struct Step {
    Point at;
    float distance;  // from the route's start
    std::size_t leg;
  };

  void traceRoute();
  void paintBlocks(Canvas* canvas) const;
  void paintWater(Canvas* canvas) const;
  void paintAvenues(Canvas* canvas) const;
  void paintRoute(Canvas* canvas) const;
  void keepPlanes(const Canvas& canvas);

  float scale_;
  int width_;
  int height_;
  std::vector<Step> route_;
  std::vector<std::uint8_t> luma_;
  // Four planes, one for each way that pairs of pixels can fall in x and y, each at half the size.
  std::vector<std::uint8_t> chroma_[2][4];
};

}  // namespace phone
