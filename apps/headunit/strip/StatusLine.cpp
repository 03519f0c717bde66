#include "headunit/Calls.h"
#include "headunit/strip/Cards.h"
#include "headunit/strip/Glyphs.h"

namespace headunit::strip {
namespace {

std::string wordsOn(const PhoneView& phone) {
  if (!phone.awaited.empty()) return "NO PHONE YET " + phone.awaited;
  if (!phone.known) return "NO PHONE YET";
  const std::size_t calls = callsIn(phone.calls);
  if (calls == 0) return "PHONE";
  return std::to_string(calls) + (calls == 1 ? " CALL" : " CALLS");
}

}  // namespace

void drawStatus(Brush* brush, Box box, const PhoneView& phone) {
  Box bars = box.takeRight(26);
  bars.takeTop(2);
  bars.takeBottom(3);
  drawSignal(brush, bars, phone.known ? phone.signal : 0, INK, TRACK);
  box.takeRight(10);
  brush->text(wordsOn(phone), box, EYEBROW);
}

}  // namespace headunit::strip
