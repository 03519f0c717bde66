#include <algorithm>

#include "headunit/strip/Cards.h"
#include "headunit/strip/Glyphs.h"

namespace headunit::strip {
namespace {

constexpr double MARGIN = 12;
constexpr Type KEYS{11, SOFT_INK};

void drawButton(Brush* brush, const Box& box, const char* words, Colour colour) {
  brush->fill(box, colour, 9);
  brush->text(words, box, LABEL, Align::middle);
}

// With a space between groups of digits, as on the phone.
std::string spaced(const std::string& passkey) {
  const bool isNumber = passkey.size() == 6 && passkey.find_first_not_of("0123456789") == std::string::npos;
  return isNumber ? passkey.substr(0, 3) + "\u2009" + passkey.substr(3) : passkey;
}

void drawPasskey(Brush* brush, const Box& box, const std::string& passkey) {
  brush->fill(box, GROUND, 10);
  Type type{30, INK, true};
  const double room = box.width - 20;
  const double width = brush->widthOf(passkey, type);
  if (width > room) type.size = std::max(14.0, type.size * room / width);
  brush->text(passkey, box.inset(6), type, Align::middle);
}

}  // namespace

void drawToast(Brush* brush, const Box& strip, const NoticeView& notice, Targets* targets) {
  constexpr double HEIGHT = 64;
  Box box{strip.x + MARGIN, strip.bottom() - MARGIN - HEIGHT, strip.width - 2 * MARGIN, HEIGHT};
  brush->fill({box.x, box.y + 3, box.width, box.height}, {0x000000, 0.35}, CARD_RADIUS);
  brush->fill(box, TOAST, CARD_RADIUS);
  targets->push_back({box, {ClusterKey::back}});
  box = box.inset(10);
  const Box icon = box.takeLeft(box.height);
  brush->fill(icon, TRACK, 8);
  drawBell(brush, icon, INK);
  box.takeLeft(12);
  const Type words{13, INK};
  const double height = brush->widthOf(notice.text, words) > box.width ? 34 : 18;
  brush->paragraph(notice.text, {box.x, box.middleY() - height / 2, box.width, height + 4}, words, 2);
}

void drawPairing(Brush* brush, const Box& strip, const PairingView& pairing, Targets* targets) {
  brush->fill(strip.inset(-1), SCRIM);
  targets->clear();
  const bool hasPasskey = !pairing.passkey.empty();
  const double height = hasPasskey ? 254 : 194;
  Box box{strip.x + MARGIN, strip.middleY() - height / 2, strip.width - 2 * MARGIN, height};
  brush->fill(box, DIALOGUE, 16);
  box = box.inset(16);
  brush->text("Pair this phone?", box.takeTop(24), {17, INK, true}, Align::middle);
  brush->text(pairing.phoneAddress, box.takeTop(20), BODY, Align::middle);
  Box keys = box.takeBottom(18);
  Box buttons = box.takeBottom(38);
  box.takeBottom(12);
  if (hasPasskey) {
    box.takeTop(8);
    drawPasskey(brush, box.takeTop(56), spaced(pairing.passkey));
  }
  box.takeTop(8);
  brush->paragraph(pairing.method, box, {12, SOFT_INK}, 3, Align::middle);
  const Box refuse = buttons.takeLeft((buttons.width - 10) / 2);
  buttons.takeLeft(10);
  brush->text("Alt+Backspace", keys.takeLeft(refuse.width), KEYS, Align::middle);
  brush->text("Alt+Return", keys.takeRight(buttons.width), KEYS, Align::middle);
  drawButton(brush, refuse, "Cancel", TRACK);
  drawButton(brush, buttons, "Pair", ACCEPT);
  targets->push_back({refuse, {ClusterKey::back}});
  targets->push_back({buttons, {ClusterKey::enter}});
}

}  // namespace headunit::strip
