#pragma once

#include <cstdint>
#include <vector>

#include "phone/media/Shapes.h"

namespace phone {

/// The way through the invented city that the phone shows on its map and guides along. It ends where it
/// began, a whole map further, and is followed round and round at an even speed. Lengths are in map units.
class Route {
 public:
  Route();

  static constexpr std::size_t LEGS = 6;

  /// Where somebody is who has followed the route for some time.
  struct Place {
    Point position;         // beyond the map's edges towards the end of a round
    Point heading;          // of length 1
    std::size_t leg = 0;    // the straight stretch that the route is on, 0 to `LEGS` - 1
    float metres = 0;       // to the turn at the leg's end
    float secondsLeft = 0;  // the same way in time
  };
  Place placeAt(std::int64_t timeUs) const;

  /// The turn at the end of a leg.
  static bool turnsRight(std::size_t leg);
  /// The road that it leads into.
  static const char* roadBehind(std::size_t leg);

  struct Step {
    Point at;
    float distance;  // from the route's start
    std::size_t leg;
  };
  /// The route as a line: straight from each step to the next.
  const std::vector<Step>& steps() const { return steps_; }

 private:
  void append(Point at, std::size_t leg);

  std::vector<Step> steps_;
};

}  // namespace phone
