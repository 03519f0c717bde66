#pragma once

#include <vector>

#include "phone/media/Canvas.h"
#include "phone/media/Digits.h"
#include "phone/media/Route.h"
#include "phone/media/TestPicture.h"

namespace phone {

/// What the test picture shows above the map: the next turn, the frame counter and the clock, the driver's
/// own car, fingers, and the frame around the data strip.
class Dashboard {
 public:
  /// `scale` is 1 for a picture of 800x480.
  Dashboard(int width, int height, float scale);

  /// Where the car stands in the picture.
  Point carPosition() const { return car_; }

  void drawCar(const YuvView& picture, const TestFrame& frame, const Route::Place& place) const;
  void drawCards(const YuvView& picture, const TestFrame& frame, const Route::Place& place) const;
  void drawTouches(const YuvView& picture, const TestFrame& frame) const;
  void drawStripFrame(const YuvView& picture, const TestFrame& frame) const;

 private:
  Sprite turnCard(std::size_t leg) const;
  Sprite frameCard() const;
  Sprite stripFrame() const;
  Canvas card(float width, float height) const;
  void label(Canvas* canvas, std::string_view text, Point at, Colour colour) const;
  int scaled(float length) const;
  int frameCardLeft() const;

  int width_;
  int height_;
  float scale_;
  Point car_;
  std::vector<Sprite> turnCards_;
  Sprite frameCard_;
  Sprite stripFrame_;
  Sprite metres_;  // the unit behind the distance
  Digits distance_;
  Digits counter_;
  Digits leadingZeros_;
  Digits clock_;
  Digits finger_;
};

}  // namespace phone
