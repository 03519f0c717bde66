#include "headunit/strip/Glyphs.h"

#include <algorithm>
#include <cmath>

namespace headunit::strip {
namespace {

constexpr double TURN_ROUND = 6.28318530717958648;
constexpr double DEGREE = TURN_ROUND / 360;

// The phone's numbers for what they mean to an arrow.
enum Event {
  SLIGHT_TURN = 3,
  TURN = 4,
  SHARP_TURN = 5,
  U_TURN = 6,
  ON_RAMP = 7,
  OFF_RAMP = 8,
  FORK = 9,
  MERGE = 10,
  ROUNDABOUT_ENTER = 11,
  ROUNDABOUT_ENTER_AND_EXIT = 13,
  DESTINATION = 19
};
constexpr int LEFT = 1;

double usualAngle(int event) {
  switch (event) {
    case SLIGHT_TURN:
    case FORK:
    case MERGE: return 35;
    case ON_RAMP:
    case OFF_RAMP: return 45;
    case TURN: return 90;
    case SHARP_TURN: return 135;
    case U_TURN: return 180;
    default: return 0;
  }
}

/// A square of `size` in the middle of the box, in which drawings are made with coordinates from 0 to 1.
class Square {
 public:
  Square(const Box& box, double share) {
    size_ = std::min(box.width, box.height) * share;
    left_ = box.middleX() - size_ / 2;
    top_ = box.middleY() - size_ / 2;
  }
  double x(double share) const { return left_ + share * size_; }
  double y(double share) const { return top_ + share * size_; }
  double of(double share) const { return share * size_; }

  void moveTo(cairo_t* cairo, double across, double down) const { cairo_move_to(cairo, x(across), y(down)); }
  void lineTo(cairo_t* cairo, double across, double down) const { cairo_line_to(cairo, x(across), y(down)); }
  void circle(cairo_t* cairo, double across, double down, double radius) const {
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, x(across), y(down), of(radius), 0, TURN_ROUND);
  }

 private:
  double size_ = 0;
  double left_ = 0;
  double top_ = 0;
};

// The barbs of an arrow whose tip is here and which points clockwise from upward.
void barbs(cairo_t* cairo, const Square& square, double x, double y, double angle, double length) {
  for (const double side : {140.0, -140.0}) {
    const double way = (angle + side) * DEGREE;
    square.moveTo(cairo, x, y);
    square.lineTo(cairo, x + std::sin(way) * length, y - std::cos(way) * length);
  }
}

void drawFlag(cairo_t* cairo, const Square& square) {
  square.moveTo(cairo, 0.3, 0.95);
  square.lineTo(cairo, 0.3, 0.08);
  square.lineTo(cairo, 0.82, 0.26);
  square.lineTo(cairo, 0.3, 0.46);
  cairo_stroke(cairo);
}

void drawUTurn(cairo_t* cairo, const Square& square, bool toTheLeft) {
  const double from = toTheLeft ? 0.74 : 0.26;
  const double to = 1 - from;
  square.moveTo(cairo, from, 0.95);
  square.lineTo(cairo, from, 0.38);
  cairo_curve_to(cairo, square.x(from), square.y(0.02), square.x(to), square.y(0.02), square.x(to),
                 square.y(0.38));
  square.lineTo(cairo, to, 0.74);
  barbs(cairo, square, to, 0.74, 180, 0.26);
  cairo_stroke(cairo);
}

void drawRoundabout(cairo_t* cairo, const Square& square, double angle) {
  constexpr double RADIUS = 0.19;
  const double across = std::sin(angle * DEGREE);
  const double up = std::cos(angle * DEGREE);
  square.circle(cairo, 0.5, 0.48, RADIUS);
  square.moveTo(cairo, 0.5, 0.98);
  square.lineTo(cairo, 0.5, 0.48 + RADIUS);
  square.moveTo(cairo, 0.5 + across * RADIUS, 0.48 - up * RADIUS);
  const double tipX = 0.5 + across * 0.46;
  const double tipY = 0.48 - up * 0.46;
  square.lineTo(cairo, tipX, tipY);
  barbs(cairo, square, tipX, tipY, angle, 0.2);
  cairo_stroke(cairo);
}

// Straight up to the corner, and round it; a sharp turn comes back down beside its foot.
void drawBend(cairo_t* cairo, const Square& square, double angle) {
  constexpr double BRANCH = 0.5;
  constexpr double ROUNDING = 0.16;
  const double across = std::sin(angle * DEGREE);
  const double up = std::cos(angle * DEGREE);
  const double foot = 0.5 - across * 0.24;
  const double corner = 0.36 + 0.2 * up;
  square.moveTo(cairo, foot, 0.96);
  square.lineTo(cairo, foot, corner + ROUNDING);
  cairo_curve_to(cairo, square.x(foot), square.y(corner), square.x(foot), square.y(corner),
                 square.x(foot + across * ROUNDING), square.y(corner - up * ROUNDING));
  square.lineTo(cairo, foot + across * BRANCH, corner - up * BRANCH);
  barbs(cairo, square, foot + across * BRANCH, corner - up * BRANCH, angle, 0.26);
  cairo_stroke(cairo);
}

}  // namespace

double arrowAngle(const TurnView& turn) {
  const double angle = turn.angle > 0 ? turn.angle % 360 : usualAngle(turn.event);
  return turn.side == LEFT && angle <= 180 ? -angle : angle;
}

void drawTurn(Brush* brush, const Box& box, const TurnView& turn, Colour colour) {
  const Square square(box, 0.66);
  cairo_t* const cairo = brush->line(colour, square.of(0.115));
  if (turn.event == DESTINATION) return drawFlag(cairo, square);
  if (turn.event == U_TURN) return drawUTurn(cairo, square, turn.side == LEFT);
  const double angle = arrowAngle(turn);
  if (turn.event >= ROUNDABOUT_ENTER && turn.event <= ROUNDABOUT_ENTER_AND_EXIT)
    return drawRoundabout(cairo, square, angle);
  drawBend(cairo, square, angle);
}

void drawNote(Brush* brush, const Box& box, Colour colour) {
  const Square square(box, 0.42);
  cairo_t* const cairo = brush->line(colour, square.of(0.09));
  square.moveTo(cairo, 0.36, 0.8);
  square.lineTo(cairo, 0.36, 0.14);
  square.lineTo(cairo, 0.88, 0.04);
  square.lineTo(cairo, 0.88, 0.7);
  square.moveTo(cairo, 0.36, 0.3);
  square.lineTo(cairo, 0.88, 0.2);
  cairo_stroke(cairo);
  square.circle(cairo, 0.22, 0.82, 0.155);
  square.circle(cairo, 0.74, 0.72, 0.155);
  cairo_fill(cairo);
}

void drawPlayState(Brush* brush, const Box& box, bool playing, Colour colour) {
  const Square square(box, 1);
  if (playing) {
    brush->fill({square.x(0.2), square.y(0.12), square.of(0.22), square.of(0.76)}, colour, square.of(0.06));
    brush->fill({square.x(0.58), square.y(0.12), square.of(0.22), square.of(0.76)}, colour, square.of(0.06));
    return;
  }
  cairo_t* const cairo = brush->line(colour, 1);
  square.moveTo(cairo, 0.24, 0.08);
  square.lineTo(cairo, 0.9, 0.5);
  square.lineTo(cairo, 0.24, 0.92);
  cairo_close_path(cairo);
  cairo_fill(cairo);
}

void drawShuffle(Brush* brush, const Box& box, Colour colour) {
  const Square square(box, 1);
  cairo_t* const cairo = brush->line(colour, square.of(0.12));
  for (const double side : {0.25, 0.75}) {
    square.moveTo(cairo, 0.02, 1 - side);
    cairo_curve_to(cairo, square.x(0.45), square.y(1 - side), square.x(0.45), square.y(side), square.x(0.96),
                   square.y(side));
    barbs(cairo, square, 0.98, side, 90, 0.24);
  }
  cairo_stroke(cairo);
}

void drawRepeat(Brush* brush, const Box& box, bool one, Colour colour) {
  const Square square(box, 1);
  cairo_t* const cairo = brush->line(colour, square.of(0.12));
  square.moveTo(cairo, 0.04, 0.5);
  cairo_curve_to(cairo, square.x(0.04), square.y(0.26), square.x(0.14), square.y(0.2), square.x(0.34),
                 square.y(0.2));
  square.lineTo(cairo, 0.94, 0.2);
  barbs(cairo, square, 0.96, 0.2, 90, 0.24);
  square.moveTo(cairo, 0.96, 0.5);
  cairo_curve_to(cairo, square.x(0.96), square.y(0.74), square.x(0.86), square.y(0.8), square.x(0.66),
                 square.y(0.8));
  square.lineTo(cairo, 0.06, 0.8);
  barbs(cairo, square, 0.04, 0.8, -90, 0.24);
  cairo_stroke(cairo);
  if (one) brush->text("1", box, {box.height * 0.52, colour, true}, Align::middle);
}

void drawBell(Brush* brush, const Box& box, Colour colour) {
  const Square square(box, 0.6);
  cairo_t* const cairo = brush->line(colour, square.of(0.1));
  square.moveTo(cairo, 0.1, 0.76);
  cairo_curve_to(cairo, square.x(0.3), square.y(0.6), square.x(0.1), square.y(0.08), square.x(0.5),
                 square.y(0.08));
  cairo_curve_to(cairo, square.x(0.9), square.y(0.08), square.x(0.7), square.y(0.6), square.x(0.9),
                 square.y(0.76));
  cairo_close_path(cairo);
  square.moveTo(cairo, 0.42, 0.94);
  square.lineTo(cairo, 0.58, 0.94);
  cairo_stroke(cairo);
}

void drawPerson(Brush* brush, const Box& box, Colour colour) {
  const Square square(box, 0.56);
  cairo_t* const cairo = brush->line(colour, 1);
  square.circle(cairo, 0.5, 0.27, 0.23);
  cairo_fill(cairo);
  square.moveTo(cairo, 0.06, 0.98);
  cairo_curve_to(cairo, square.x(0.06), square.y(0.46), square.x(0.94), square.y(0.46), square.x(0.94),
                 square.y(0.98));
  cairo_close_path(cairo);
  cairo_fill(cairo);
}

void drawSignal(Brush* brush, const Box& box, unsigned int strength, Colour on, Colour off) {
  constexpr int BARS = 4;
  const double step = box.width / BARS;
  for (int i = 0; i < BARS; ++i) {
    const double height = box.height * (i + 1) / BARS;
    const bool isOn = static_cast<unsigned int>(i) < strength;
    brush->fill({box.x + i * step, box.bottom() - height, step * 0.66, height}, isOn ? on : off, step * 0.2);
  }
}

}  // namespace headunit::strip
