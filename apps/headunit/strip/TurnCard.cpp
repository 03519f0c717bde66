#include "headunit/strip/Cards.h"
#include "headunit/strip/Glyphs.h"
#include "headunit/strip/Words.h"

namespace headunit::strip {
namespace {

constexpr double GAP = 12;

void drawTile(Brush* brush, const Box& tile, const TurnView& turn) {
  brush->fill(tile, RAISED, 10);
  if (!turn.guiding) return drawTurn(brush, tile, {}, TRACK);
  if (turn.image) return brush->image(*turn.image, tile, 10);
  drawTurn(brush, tile, turn, ROUTE);
}

void drawNoRoute(Brush* brush, Box box) {
  brush->text("No route", box.takeTop(box.height * 0.5 + 2), {TITLE.size, SOFT_INK, true});
  box.takeTop(2);
  brush->paragraph("The phone gives no guidance", box, SMALL, 2);
}

}  // namespace

void drawTurnCard(Brush* brush, Box box, const TurnView& turn) {
  brush->fill(box, CARD, CARD_RADIUS);
  box = box.inset(CARD_PADDING);
  drawTile(brush, box.takeLeft(box.height), turn);
  box.takeLeft(GAP);
  if (!turn.guiding) return drawNoRoute(brush, box);
  Box first = box.takeTop(34);
  if (turn.seconds >= 0) {
    const std::string wait = waitWords(turn.seconds);
    brush->text(wait, first.takeRight(std::min(brush->widthOf(wait, BODY), first.width / 2)), BODY,
                Align::right);
  }
  if (turn.meters >= 0) brush->text(distanceWords(turn.meters), first, {26, ROUTE, true});
  box.takeTop(4);
  brush->paragraph(turn.road, box, LABEL, 2);
}

}  // namespace headunit::strip
