#include "headunit/Calls.h"
#include "headunit/strip/Cards.h"
#include "headunit/strip/Glyphs.h"

namespace headunit::strip {
namespace {

// What a phone has left is only drawn where its last picture is, too.
std::string wordsOn(const ClusterView& view) {
  const PhoneView& phone = view.phone;
  if (!phone.known && view.ofPhone) return "PHONE CONNECTED";
  if (!phone.known) return phone.awaited.empty() ? "NO PHONE YET" : "NO PHONE YET " + phone.awaited;
  const std::size_t calls = callsIn(phone.calls);
  if (calls == 0) return "PHONE";
  return std::to_string(calls) + (calls == 1 ? " CALL" : " CALLS");
}

}  // namespace

void drawStatus(Brush* brush, Box box, const ClusterView& view) {
  Box bars = box.takeRight(26);
  bars.takeTop(2);
  bars.takeBottom(3);
  // Of a phone that does not tell its signal, it would be wrong to say that it has none.
  if (view.phone.known || !view.ofPhone)
    drawSignal(brush, bars, view.phone.known ? view.phone.signal : 0, INK, TRACK);
  box.takeRight(10);
  brush->text(wordsOn(view), box, EYEBROW);
}

}  // namespace headunit::strip
