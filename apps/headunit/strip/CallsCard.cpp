#include <algorithm>

#include "headunit/Calls.h"
#include "headunit/strip/Cards.h"
#include "headunit/strip/Glyphs.h"
#include "headunit/strip/Words.h"

namespace headunit::strip {
namespace {

constexpr double ROW = 48;
constexpr double PADDING = 8;

struct StateLook {
  const char* words;
  Colour colour;
};

// By the phone's number for the state.
StateLook lookOf(int state) {
  static constexpr StateLook looks[] = {{"Call", SOFT_INK},   {"On the phone", CALL}, {"On hold", HOLD},
                                        {"Ended", FAINT_INK}, {"Incoming", MUSIC},    {"Conference", CALL},
                                        {"Muted", HOLD}};
  const bool isKnown = state > 0 && state < static_cast<int>(std::size(looks));
  return looks[isKnown ? state : 0];
}

void drawPortrait(Brush* brush, const Box& box, const CallView& call, Colour colour) {
  if (call.portrait) return brush->imageCovering(*call.portrait, box, box.height / 2);
  brush->fill(box, RAISED, box.height / 2);
  const std::string letters = initials(call.caller);
  if (letters.empty()) return drawPerson(brush, box, colour);
  brush->text(letters, box, {14, colour, true}, Align::middle);
}

void drawCall(Brush* brush, Box box, const CallView& call) {
  const StateLook look = lookOf(call.state);
  const double side = box.height - 8;
  drawPortrait(brush, {box.x, box.y + 4, side, side}, call, look.colour);
  box.takeLeft(side + 10);
  box = {box.x, box.y + 4, box.width, box.height - 8};
  Box names = box.takeTop(box.height / 2);
  const bool hasName = !call.caller.empty();
  brush->text(hasName ? call.caller : call.number.empty() ? "Unknown caller" : call.number, names, LABEL);
  if (call.seconds > 0) {
    const std::string clock = clockWords(call.seconds);
    brush->text(clock, box.takeRight(brush->widthOf(clock, SMALL) + 2), {SMALL.size, SOFT_INK}, Align::right);
  }
  const Type state{SMALL.size, look.colour, true};
  const double width = std::min(brush->widthOf(look.words, state) + 2, box.width);
  brush->text(look.words, box.takeLeft(width), state);
  box.takeLeft(8);
  if (hasName) brush->text(call.number, box, SMALL);
}

}  // namespace

double callsHeight(std::size_t count) { return ROW * static_cast<double>(count) + 2 * PADDING; }

void drawCallsCard(Brush* brush, Box box, const std::vector<CallView>& calls) {
  brush->fill(box, CARD, CARD_RADIUS);
  box = {box.x + CARD_PADDING, box.y + PADDING, box.width - 2 * CARD_PADDING, box.height - 2 * PADDING};
  const auto room = static_cast<std::size_t>(std::max(1.0, (box.height + 0.5) / ROW));
  const std::vector<CallView> ranked = byRank(calls);
  for (std::size_t i = 0; i < std::min(room, ranked.size()); ++i)
    drawCall(brush, box.takeTop(ROW), ranked[i]);
}

}  // namespace headunit::strip
