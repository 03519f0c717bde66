#pragma once

#include <cstdint>

namespace headunit::strip {

struct Colour {
  std::uint32_t rgb = 0;
  double alpha = 1;
};

// Dark, for it stands beside the road all night.
constexpr Colour GROUND{0x0E1116};
constexpr Colour CARD{0x171C24};
constexpr Colour RAISED{0x222A36};
constexpr Colour TRACK{0x323C4A};
constexpr Colour INK{0xF3F5F8};
constexpr Colour SOFT_INK{0xA3AEBD};
constexpr Colour FAINT_INK{0x7D899A};
constexpr Colour ROUTE{0x34D399};
constexpr Colour MUSIC{0x5AA2FF};
constexpr Colour SELECTION{0x27508F};
constexpr Colour RADIO{0xFBBF4A};
constexpr Colour CALL{0x2FC98B};
constexpr Colour HOLD{0xF0A93B};
constexpr Colour TOAST{0x3A4454};
constexpr Colour DIALOGUE{0x262F3D};
constexpr Colour ACCEPT{0x3B82F6};
constexpr Colour SCRIM{0x05070A, 0.72};

struct Type {
  double size = 14;  ///< of the font, in the strip's own units
  Colour colour = INK;
  bool bold = false;
};

constexpr Type DISPLAY{28, INK, true};
constexpr Type TITLE{16, INK, true};
constexpr Type LABEL{14, INK, true};
constexpr Type BODY{13, SOFT_INK};
constexpr Type SMALL{11.5, FAINT_INK};
constexpr Type EYEBROW{10.5, FAINT_INK, true};

}  // namespace headunit::strip
