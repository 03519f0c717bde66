#include "phone/media/Lettering.h"

#include <sstream>
#include <string>
#include <vector>

namespace phone {
namespace {

// A letter's outline is in the path language of SVG: M moves, L draws a line, C a cubic curve. Capitals reach
// from y = 0 down to y = 100.
struct Letter {
  char character;
  float width;
  const char* path;
};

constexpr Letter LETTERS[] = {
    {'0', 60, "M30 0 C48 0 60 12 60 30 L60 70 C60 88 48 100 30 100 C12 100 0 88 0 70 L0 30 C0 12 12 0 30 0"},
    {'1', 60, "M12 22 L34 0 L34 100"},
    {'2', 60, "M2 28 C2 10 14 0 30 0 C47 0 58 11 58 27 C58 40 50 48 40 58 L2 100 L60 100"},
    {'3', 60,
     "M3 16 C7 5 18 0 29 0 C45 0 56 10 56 25 C56 40 45 48 26 48 C47 48 60 58 60 74 C60 90 47 100 30 100 "
     "C16 100 5 94 0 81"},
    {'4', 60, "M44 100 L44 0 L0 70 L62 70"},
    {'5', 60,
     "M54 0 L10 0 L5 46 C12 40 20 37 30 37 C48 37 60 50 60 68 C60 87 47 100 29 100 C15 100 5 94 0 82"},
    {'6', 60,
     "M46 0 C20 14 0 40 0 68 C0 87 12 100 30 100 C48 100 60 87 60 69 C60 51 48 39 31 39 C15 39 3 50 0 66"},
    {'7', 60, "M0 0 L60 0 L22 100"},
    {'8', 60,
     "M30 47 C14 47 4 37 4 24 C4 10 14 0 30 0 C46 0 56 10 56 24 C56 37 46 47 30 47 C12 47 0 58 0 73 "
     "C0 90 12 100 30 100 C48 100 60 90 60 73 C60 58 48 47 30 47"},
    {'9', 60,
     "M14 100 C40 86 60 60 60 32 C60 13 48 0 30 0 C12 0 0 13 0 31 C0 49 12 61 29 61 C45 61 57 50 60 34"},
    {'A', 64, "M0 100 L32 0 L64 100 M11 68 L53 68"},
    {'B', 60,
     "M0 48 L30 48 C46 48 55 38 55 24 C55 9 46 0 30 0 L0 0 L0 100 L32 100 C50 100 60 90 60 74 "
     "C60 58 50 48 32 48"},
    {'C', 62, "M62 18 C55 7 45 0 33 0 C14 0 0 20 0 50 C0 80 14 100 33 100 C45 100 55 93 62 82"},
    {'D', 62, "M0 0 L0 100 L24 100 C48 100 62 80 62 50 C62 20 48 0 24 0 L0 0"},
    {'E', 52, "M52 0 L0 0 L0 100 L52 100 M0 48 L46 48"},
    {'F', 50, "M50 0 L0 0 L0 100 M0 49 L44 49"},
    {'G', 63, "M62 18 C55 7 45 0 33 0 C14 0 0 20 0 50 C0 80 14 100 33 100 C50 100 63 88 63 68 L63 54 L36 54"},
    {'H', 60, "M0 0 L0 100 M60 0 L60 100 M0 48 L60 48"},
    {'I', 0, "M0 0 L0 100"},
    {'J', 38, "M38 0 L38 72 C38 90 30 100 18 100 C8 100 2 94 0 84"},
    {'K', 58, "M0 0 L0 100 M56 0 L0 60 M20 40 L58 100"},
    {'L', 48, "M0 0 L0 100 L48 100"},
    {'M', 72, "M0 100 L0 0 L36 64 L72 0 L72 100"},
    {'N', 60, "M0 100 L0 0 L60 100 L60 0"},
    {'O', 68, "M34 0 C14 0 0 20 0 50 C0 80 14 100 34 100 C54 100 68 80 68 50 C68 20 54 0 34 0"},
    {'P', 58, "M0 100 L0 0 L30 0 C48 0 58 11 58 28 C58 45 48 56 30 56 L0 56"},
    {'Q', 68,
     "M34 0 C14 0 0 20 0 50 C0 80 14 100 34 100 C54 100 68 80 68 50 C68 20 54 0 34 0 M44 74 L68 104"},
    {'R', 58, "M0 100 L0 0 L30 0 C48 0 58 11 58 28 C58 45 48 56 30 56 L0 56 M30 56 L58 100"},
    {'S', 58,
     "M56 16 C50 6 41 0 29 0 C13 0 3 9 3 24 C3 40 14 45 30 49 C48 53 58 60 58 75 C58 90 46 100 29 100 "
     "C15 100 5 93 0 82"},
    {'T', 60, "M0 0 L60 0 M30 0 L30 100"},
    {'U', 60, "M0 0 L0 66 C0 88 12 100 30 100 C48 100 60 88 60 66 L60 0"},
    {'V', 62, "M0 0 L31 100 L62 0"},
    {'W', 88, "M0 0 L22 100 L44 8 L66 100 L88 0"},
    {'X', 58, "M0 0 L58 100 M58 0 L0 100"},
    {'Y', 60, "M0 0 L30 50 L60 0 M30 50 L30 100"},
    {'Z', 56, "M0 0 L56 0 L0 100 L56 100"},
    {':', 4, "M2 32 L2 34 M2 80 L2 82"},
    {'.', 4, "M2 99 L2 100"},
    {'-', 34, "M0 52 L34 52"},
    {'/', 36, "M0 106 L36 -6"},
    {' ', 30, ""},
};

const Letter& letterOf(char character) {
  for (const Letter& letter : LETTERS) {
    if (letter.character == character) return letter;
  }
  return letterOf(' ');
}

/// Draws an outline, scaled and moved to its place, as a row of short strokes.
class Pen {
 public:
  Pen(Mask* mask, Point origin, const Lettering& lettering)
      : mask_(mask), origin_(origin), scale_(lettering.height / 100), radius_(lettering.stroke / 2) {}

  void follow(const char* path) {
    std::istringstream words(path);
    char command = 0;
    while (words >> command) {
      const Point first = read(words);
      if (command == 'M') at_ = first;
      if (command == 'L') line(first);
      if (command != 'C') continue;
      const Point second = read(words);
      curve(at_, first, second, read(words));
    }
  }

 private:
  static Point read(std::istream& words) {
    Point point;
    words >> point.x >> point.y;
    return point;
  }

  void line(Point to) {
    mask_->add(Capsule{origin_ + at_ * scale_, origin_ + to * scale_, radius_});
    at_ = to;
  }

  void curve(Point a, Point b, Point c, Point d) {
    constexpr int PIECES = 10;
    for (int i = 1; i <= PIECES; ++i) {
      const float t = static_cast<float>(i) / PIECES;
      const float s = 1 - t;
      line(a * (s * s * s) + b * (3 * s * s * t) + c * (3 * s * t * t) + d * (t * t * t));
    }
  }

  Mask* mask_;
  Point origin_;
  float scale_;
  float radius_;
  Point at_;
};

}  // namespace

float textWidth(std::string_view text, const Lettering& lettering) {
  float width = text.empty() ? 0 : -lettering.spacing;
  for (const char character : text) {
    width += letterOf(character).width * lettering.height / 100 + lettering.spacing;
  }
  return width;
}

void addText(Mask* mask, std::string_view text, Point topLeft, const Lettering& lettering) {
  for (const char character : text) {
    const Letter& letter = letterOf(character);
    Pen(mask, topLeft, lettering).follow(letter.path);
    topLeft.x += letter.width * lettering.height / 100 + lettering.spacing;
  }
}

}  // namespace phone
