#include "phone/media/Dashboard.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <string>

#include "phone/media/DataStrip.h"

namespace phone {
namespace {

constexpr Colour PANEL = colour(0x0d121b);
constexpr Colour PANEL_EDGE = colour(0x38455a);
constexpr Colour WHITE = colour(0xf4f7fb);
constexpr Colour GREY = colour(0x8d9bb0);
constexpr Colour FAINT = colour(0x3f4b5e);
constexpr Colour ACCENT = colour(0x3f9bff);
constexpr Colour CAR = colour(0xf4f7fb);
constexpr Colour CAR_HALO = colour(0x3f9bff);
constexpr std::array<Colour, 6> FINGERS{colour(0xffb340), colour(0x4fe0c4), colour(0xff6f91),
                                        colour(0xb18cff), colour(0x8fdc5c), colour(0x62c6ff)};

// Lengths for a picture of 800x480.
constexpr float MARGIN = 16;
constexpr float TURN_WIDTH = 236, TURN_HEIGHT = 92;
constexpr float FRAME_WIDTH = 252, FRAME_HEIGHT = 136;
constexpr float PADDING = 20;
constexpr std::int64_t SWEEP_US = 4'000'000;
constexpr std::int64_t PULSE_US = 1'600'000;

float share(std::int64_t time, std::int64_t period) {
  return static_cast<float>(time % period) / static_cast<float>(period);
}

std::string capitals(std::string text) {
  for (char& letter : text) letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  return text;
}

std::string clockText(std::int64_t timeUs) {
  const long long ms = timeUs / 1000;
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%02lld:%02lld:%02lld.%03lld", ms / 3600000 % 100, ms / 60000 % 60,
                ms / 1000 % 60, ms % 1000);
  return text.data();
}

}  // namespace

Dashboard::Dashboard(int width, int height, float scale)
    : width_(width),
      height_(height),
      scale_(scale),
      car_{static_cast<float>(width) * 0.5F, static_cast<float>(height) * 0.6F},
      distance_({30 * scale, 4.2F * scale, 9 * scale}, WHITE),
      counter_({36 * scale, 4.6F * scale, 8 * scale}, WHITE),
      leadingZeros_({36 * scale, 4.6F * scale, 8 * scale}, FAINT),
      clock_({16 * scale, 2.1F * scale, 5.6F * scale}, WHITE),
      finger_({16 * scale, 3 * scale, 5 * scale}, WHITE) {
  for (std::size_t leg = 0; leg < Route::LEGS; ++leg) turnCards_.push_back(turnCard(leg));
  frameCard_ = frameCard();
  stripFrame_ = stripFrame();
  Canvas unit(scaled(16), scaled(14));
  label(&unit, "M", {2, 2}, GREY);
  metres_ = Sprite(unit);
}

int Dashboard::scaled(float length) const { return 2 * static_cast<int>(std::lround(length * scale_ / 2)); }

int Dashboard::frameCardLeft() const { return width_ - scaled(MARGIN + FRAME_WIDTH); }

Canvas Dashboard::card(float width, float height) const {
  Canvas canvas(scaled(width), scaled(height));
  const Point far{static_cast<float>(canvas.width()), static_cast<float>(canvas.height())};
  canvas.paint(RoundedBox{{0, 0}, far, 14 * scale_}, PANEL_EDGE, 0.9F);
  const Point line = Point{1, 1} * std::max(1.0F, scale_);
  canvas.paint(RoundedBox{line, far - line, 13 * scale_}, PANEL, 0.96F);
  return canvas;
}

void Dashboard::label(Canvas* canvas, std::string_view text, Point at, Colour colour) const {
  Mask mask(canvas->width(), canvas->height());
  addText(&mask, text, at * scale_, {9.5F * scale_, std::max(1.1F, 1.5F * scale_), 4 * scale_});
  canvas->paint(mask, colour);
}

// An arrow that comes from below and bends to its side, on a tile of its own colour.
Sprite Dashboard::turnCard(std::size_t leg) const {
  Canvas canvas = card(TURN_WIDTH, TURN_HEIGHT);
  canvas.paint(RoundedBox{Point{14, 14} * scale_, Point{78, 78} * scale_, 10 * scale_}, ACCENT, 1);
  Mask arrow(canvas.width(), canvas.height());
  const float side = Route::turnsRight(leg) ? 1.0F : -1.0F;
  const auto stroke = [&](Point from, Point to) {
    const Point middle{46, 46};
    const auto place = [&](Point p) { return (middle + Point{side * p.x, p.y}) * scale_; };
    arrow.add(Capsule{place(from), place(to), 3 * scale_});
  };
  stroke({-10, 20}, {-10, 2});
  stroke({-10, 2}, {-7.5F, -5.5F});
  stroke({-7.5F, -5.5F}, {0, -8});
  stroke({0, -8}, {17, -8});
  stroke({17, -8}, {8, -17});
  stroke({17, -8}, {8, 1});
  canvas.paint(arrow, WHITE);
  label(&canvas, capitals(Route::roadBehind(leg)), {95, 67}, GREY);
  return Sprite(canvas);
}

Sprite Dashboard::frameCard() const {
  Canvas canvas = card(FRAME_WIDTH, FRAME_HEIGHT);
  label(&canvas, "FRAME", {PADDING, 16}, GREY);
  label(&canvas, "TIME", {PADDING, 99}, GREY);
  const std::string size = std::to_string(width_) + " X " + std::to_string(height_);
  const Lettering small{9.5F, 1.5F, 4};
  label(&canvas, size, {FRAME_WIDTH - PADDING - textWidth(size, small), 16}, FAINT);
  return Sprite(canvas);
}

Sprite Dashboard::stripFrame() const {
  Canvas canvas(width_, stripHeight(height_));
  canvas.fill(PANEL);
  const float top = static_cast<float>(height_ - canvas.height()) / scale_;
  const float column = static_cast<float>(width_) / 50 / scale_;
  const Lettering small{7, 1.2F, 2.6F};
  for (const auto& [text, row] :
       {std::pair{"FRAME", StripRow::Counter}, std::pair{"TOUCH", StripRow::Touch}}) {
    const float middle = static_cast<float>(stripRowMiddle(row, height_)) / scale_ - top;
    Mask mask(canvas.width(), canvas.height());
    const Point at{(4 * column - textWidth(text, small)) / 2, middle - small.height / 2};
    addText(&mask, text, at * scale_,
            {small.height * scale_, std::max(1.0F, small.stroke * scale_), small.spacing * scale_});
    canvas.paint(mask, GREY);
  }
  return Sprite(canvas);
}

void Dashboard::drawCar(const YuvView& picture, const TestFrame& frame, const Route::Place& place) const {
  const float pulse = share(frame.timeUs, PULSE_US);
  paint(picture, Ring{car_, (24 + 30 * pulse) * scale_, 1.5F * scale_}, CAR_HALO, 0.7F * (1 - pulse));
  paint(picture, Capsule{car_, car_, 25 * scale_}, CAR_HALO, 0.28F);
  const Point ahead = place.heading * scale_;
  const Point aside{-ahead.y, ahead.x};
  const auto arrow = [&](float size) {
    return Quad{{car_ + ahead * (17 * size), car_ + aside * (12.5F * size) - ahead * (13 * size),
                 car_ - ahead * (7 * size), car_ - aside * (12.5F * size) - ahead * (13 * size)}};
  };
  paint(picture, arrow(1.22F), PANEL, 0.9F);
  paint(picture, arrow(1), CAR, 1);
}

void Dashboard::drawCards(const YuvView& picture, const TestFrame& frame, const Route::Place& place) const {
  const int margin = scaled(MARGIN);
  turnCards_[place.leg].draw(picture, margin, margin);
  const std::string distance = std::to_string(static_cast<int>(place.metres));
  const int unitLeft = margin + scaled(92) + distance_.width(distance);
  distance_.draw(picture, distance, margin + scaled(91), margin + scaled(18));
  metres_.draw(picture, unitLeft, margin + scaled(18) + distance_.height() - metres_.height());

  const int left = frameCardLeft();
  frameCard_.draw(picture, left, margin);
  std::array<char, 16> number{};
  std::snprintf(number.data(), number.size(), "%07u", frame.counter % 10'000'000U);
  const std::string digits = number.data();
  const std::size_t zeros = std::min(digits.find_first_not_of('0'), digits.size() - 1);
  const int x = left + scaled(PADDING - 3);
  const int y = margin + scaled(36);
  leadingZeros_.draw(picture, digits.substr(0, zeros), x, y);
  counter_.draw(picture, digits.substr(zeros), x + counter_.width(digits.substr(0, zeros)), y);
  const std::string clock = clockText(frame.timeUs);
  clock_.draw(picture, clock, left + scaled(FRAME_WIDTH - PADDING) - clock_.width(clock),
              margin + scaled(90));
}

void Dashboard::drawTouches(const YuvView& picture, const TestFrame& frame) const {
  for (const TouchMark& touch : frame.touches) {
    const Point at{static_cast<float>(touch.x), static_cast<float>(touch.y)};
    const auto id = static_cast<unsigned int>(touch.pointerId);
    const Colour colour = FINGERS[id % FINGERS.size()];
    if (touch.lifted) {
      paint(picture, Ring{at, 34 * scale_, 2.5F * scale_}, colour, 0.6F);
      paint(picture, Capsule{at, at, 4 * scale_}, colour, 0.6F);
      continue;
    }
    paint(picture, Capsule{at, at, 34 * scale_}, PANEL, 0.55F);
    paint(picture, Ring{at, 34 * scale_, 3.5F * scale_}, colour);
    paint(picture, Ring{at, 42 * scale_, 1.2F * scale_}, colour, 0.5F);
    const std::string text = std::to_string(id);
    finger_.draw(picture, text, touch.x - finger_.width(text) / 2, touch.y - finger_.height() / 2);
  }
}

void Dashboard::drawStripFrame(const YuvView& picture, const TestFrame& frame) const {
  const int top = height_ - stripFrame_.height();
  stripFrame_.draw(picture, 0, top);
  const float way = share(frame.timeUs, SWEEP_US) * static_cast<float>(width_);
  const float middle = static_cast<float>(top) + scale_;
  paint(picture, RoundedBox{{-4, middle - scale_}, {way, middle + scale_}, 0}, ACCENT, 0.9F);
  paint(picture, Capsule{{way, middle}, {way, middle}, 4 * scale_}, WHITE);
}

}  // namespace phone
