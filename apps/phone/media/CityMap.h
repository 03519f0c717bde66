#pragma once

#include <vector>

#include "phone/media/Canvas.h"
#include "phone/media/Route.h"

namespace phone {

/// An invented city seen from above, with the route through it. The map wraps round: what leaves at one edge
/// comes in at the opposite one.
class CityMap {
 public:
  /// `scale` is the size of one map unit in pixels; roads are about 18 units wide.
  CityMap(const Route& route, float scale);

  /// Fills the upper `rows` rows of the picture, with `position` of the map at `centre`, which is in its
  /// pixels.
  void draw(const YuvView& picture, int rows, Point position, Point centre) const;

 private:
  void paintBlocks(Canvas* canvas) const;
  void paintWater(Canvas* canvas) const;
  void paintAvenues(Canvas* canvas) const;
  void paintRoute(Canvas* canvas, const Route& route) const;
  void keepPlanes(const Canvas& canvas);

  float scale_;
  int width_;
  int height_;
  std::vector<std::uint8_t> luma_;
  // Four planes, one for each way that pairs of pixels can fall in x and y, each at half the size.
  std::vector<std::uint8_t> chroma_[2][4];
};

}  // namespace phone
