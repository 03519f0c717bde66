#include "phone/media/Route.h"

#include <gtest/gtest.h>

namespace {

using phone::Point;
using phone::Route;

constexpr std::int64_t TENTH = 100'000;
constexpr std::int64_t MINUTE = 60'000'000;

bool isAlong(Point heading, Point other) { return phone::dot(heading, other) > 0.999F; }

TEST(PhoneRoute, TurnsAtTheEndOfEachLegToTheToldSide) {
  const Route route;
  std::size_t corners = 0;
  Point before = route.placeAt(0).heading;
  for (std::int64_t time = 0; time < MINUTE; time += TENTH) {
    const Route::Place place = route.placeAt(time);
    if (place.metres > 10) before = place.heading;
    const Route::Place next = route.placeAt(time + TENTH);
    if (next.leg == place.leg) continue;
    ++corners;
    EXPECT_EQ(next.leg, (place.leg + 1) % Route::LEGS);
    const Point right{-before.y, before.x};  // down is positive
    const float side = Route::turnsRight(place.leg) ? 1.0F : -1.0F;
    EXPECT_TRUE(isAlong(next.heading, right * side)) << place.leg;
  }
  EXPECT_GT(corners, Route::LEGS) << "more than one round";
}

TEST(PhoneRoute, TheWayToTheTurnShrinksEvenlyWithTheTime) {
  const Route route;
  for (std::int64_t time = 0; time < MINUTE; time += TENTH) {
    const Route::Place place = route.placeAt(time);
    const Route::Place next = route.placeAt(time + TENTH);
    EXPECT_GE(next.metres, 0);
    if (next.leg != place.leg) {
      EXPECT_EQ(place.metres, 0) << "the turn is behind when the next is told";
    } else if (next.metres > 0) {
      EXPECT_NEAR(place.secondsLeft - next.secondsLeft, 0.1, 0.001);
      EXPECT_NEAR(place.metres - next.metres, 1.55, 0.01);
    }
  }
}

TEST(PhoneRoute, ARoundEndsInTheHeadingInWhichItBegan) {
  const Route route;
  const std::vector<Route::Step>& steps = route.steps();
  const Point first = steps[1].at - steps[0].at;
  const Point last = steps[steps.size() - 1].at - steps[steps.size() - 2].at;
  EXPECT_GT(phone::dot(first * (1 / phone::length(first)), last * (1 / phone::length(last))), 0.99F);
}

}  // namespace
