#include "headunit/Calls.h"
#include "headunit/strip/Cards.h"
#include "headunit/strip/Glyphs.h"

namespace headunit::strip {
namespace {

std::string wordsOn(const PhoneView& phone) {
  // What a phone has left is only drawn where its last picture is, too.
  if (!phone.known) return phone.awaited.empty() ? "NO PHONE YET" : "NO PHONE YET " + phone.awaited;
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
