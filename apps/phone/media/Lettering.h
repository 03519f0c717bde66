#pragma once

#include <string_view>

#include "phone/media/Canvas.h"

namespace phone {

/// Lettering of even strokes with round ends: capitals, digits and a few signs. All lengths are in pixels.
struct Lettering {
  float height = 10;    // of a capital
  float stroke = 1.2F;  // width of the strokes
  float spacing = 3;    // between two letters
};

/// The width of a text; unknown characters are as wide as a space.
float textWidth(std::string_view text, const Lettering& lettering);

/// Adds a text to `mask`; `topLeft` is where the middle of a stroke at the first capital's top left runs.
void addText(Mask* mask, std::string_view text, Point topLeft, const Lettering& lettering);

}  // namespace phone
