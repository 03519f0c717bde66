#include "phone/media/Route.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace phone {
namespace {

constexpr float UNITS_PER_METRE = 4;
constexpr float METRES_PER_SECOND = 15.5F;
constexpr float CORNER = 34;  // how far before a crossing the route begins to turn

// The last one is the first one again, a whole map further to the right and up.
constexpr std::array<Point, Route::LEGS + 1> CORNERS{
    {{330, 790}, {330, 400}, {640, 400}, {640, 130}, {960, 130}, {960, -106}, {1610, -106}}};

constexpr std::array<const char*, Route::LEGS> ROADS{"Harbour Road", "Mill Lane",    "Market Street",
                                                     "Station Road", "River Avenue", "North Bridge"};

}  // namespace

// With the corners rounded.
Route::Route() {
  const Point round = CORNERS[LEGS] - CORNERS[0];
  append(CORNERS[0] + Point{0, -CORNER}, 0);
  for (std::size_t leg = 0; leg < LEGS; ++leg) {
    const Point corner = CORNERS[leg + 1];
    const Point before = corner - CORNERS[leg];
    const Point after = leg + 2 <= LEGS ? CORNERS[leg + 2] - corner : CORNERS[1] + round - corner;
    const Point enter = corner - before * (CORNER / length(before));
    const Point leave = corner + after * (CORNER / length(after));
    for (int i = 0; i <= 12; ++i) {
      const float t = static_cast<float>(i) / 12;
      append(enter * ((1 - t) * (1 - t)) + corner * (2 * t * (1 - t)) + leave * (t * t), leg);
    }
  }
}

void Route::append(Point at, std::size_t leg) {
  const float soFar = steps_.empty() ? 0 : steps_.back().distance + length(at - steps_.back().at);
  steps_.push_back({at, soFar, leg});
}

Route::Place Route::placeAt(std::int64_t timeUs) const {
  const double whole = steps_.back().distance;
  const double travelled = static_cast<double>(timeUs) * 1e-6 * METRES_PER_SECOND * UNITS_PER_METRE;
  const double rounds = std::floor(travelled / whole);
  const auto distance = static_cast<float>(travelled - rounds * whole);
  std::size_t next = 1;
  while (next + 1 < steps_.size() && steps_[next].distance <= distance) ++next;
  const Step& from = steps_[next - 1];
  const Step& to = steps_[next];
  std::size_t last = next;
  while (last + 1 < steps_.size() && steps_[last + 1].leg == to.leg) ++last;

  const Point way = to.at - from.at;
  Place place;
  place.position = from.at + way * ((distance - from.distance) / length(way));
  place.heading = way * (1 / length(way));
  place.leg = to.leg;
  place.metres = std::max(0.0F, steps_[last].distance - CORNER / 2 - distance) / UNITS_PER_METRE;
  place.secondsLeft = place.metres / METRES_PER_SECOND;
  return place;
}

bool Route::turnsRight(std::size_t leg) { return leg % 2 == 0; }

const char* Route::roadBehind(std::size_t leg) { return ROADS[leg]; }

}  // namespace phone
