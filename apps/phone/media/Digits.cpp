#include "phone/media/Digits.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace phone {
namespace {

constexpr std::string_view CHARACTERS = "0123456789:.";

int even(float length) { return std::max(2, 2 * static_cast<int>(std::lround(length / 2))); }
int evenUp(float length) { return 2 * static_cast<int>(std::ceil(length / 2)); }

}  // namespace

Digits::Digits(const Lettering& lettering, Colour colour)
    : wide_(even(lettering.height * 0.6F + lettering.spacing)),
      narrow_(even(lettering.height * 0.04F + lettering.spacing)) {
  const float margin = lettering.stroke / 2 + 1;
  for (std::size_t i = 0; i < CHARACTERS.size(); ++i) {
    const std::string_view text = CHARACTERS.substr(i, 1);
    const int width = evenUp(textWidth(text, lettering) + 2 * margin);
    Mask mask(width, evenUp(lettering.height + 2 * margin));
    addText(&mask, text, {margin, margin}, lettering);
    Canvas canvas(mask.width(), mask.height());
    canvas.paint(mask, colour);
    sprites_[i] = Sprite(canvas);
  }
}

void Digits::draw(const YuvView& picture, std::string_view text, int x, int y) const {
  for (const char character : text) {
    const std::size_t i = CHARACTERS.find(character);
    if (i != std::string_view::npos) sprites_[i].draw(picture, x, y);
    x += advance(character);
  }
}

int Digits::width(std::string_view text) const {
  int sum = 0;
  for (const char character : text) sum += advance(character);
  return sum;
}

}  // namespace phone
