#pragma once

#include <string_view>

#include "phone/media/Canvas.h"
#include "phone/media/Lettering.h"

namespace phone {

/// Digits, colon and full stop drawn once, to be put on a picture in any order; all digits are equally wide.
class Digits {
 public:
  Digits(const Lettering& lettering, Colour colour);

  /// Puts a text on `picture`, its upper left corner at `x`, `y`.
  void draw(const YuvView& picture, std::string_view text, int x, int y) const;

  int width(std::string_view text) const;
  int height() const { return sprites_[0].height(); }

 private:
  int advance(char character) const { return character == ':' || character == '.' ? narrow_ : wide_; }

  int wide_;
  int narrow_;
  Sprite sprites_[12];
};

}  // namespace phone
