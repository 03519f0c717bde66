#include <algorithm>

#include "headunit/strip/Cards.h"
#include "headunit/strip/Glyphs.h"
#include "headunit/strip/Words.h"

namespace headunit::strip {
namespace {

constexpr double PROGRESS_HEIGHT = 4;
constexpr double ICON = 13;
constexpr double FOOT = 30;  // progress bar and times

void drawCover(Brush* brush, const Box& box, const PlayingView& media) {
  if (media.cover) return brush->imageCovering(*media.cover, box, 10);
  brush->fill(box, RAISED, 10);
  drawNote(brush, box, TRACK);
}

void drawProgress(Brush* brush, const Box& box, const PlayingView& media) {
  brush->fill(box, TRACK, box.height / 2);
  if (media.durationSeconds == 0) return;
  const double share = std::min(1.0, static_cast<double>(media.positionSeconds) / media.durationSeconds);
  brush->fill({box.x, box.y, box.width * share, box.height}, MUSIC, box.height / 2);
}

void drawModes(Brush* brush, const Box& box, const PlayingView& media) {
  const double middle = box.middleX() - ICON / 2;
  const double top = box.middleY() - ICON / 2;
  drawShuffle(brush, {middle - 2.2 * ICON, top, ICON, ICON}, media.shuffle ? MUSIC : TRACK);
  drawPlayState(brush, {middle, top, ICON, ICON}, media.playing, media.known ? INK : TRACK);
  const bool repeats = media.repeat || media.repeatOne;
  drawRepeat(brush, {middle + 2.2 * ICON, top, ICON, ICON}, media.repeatOne, repeats ? MUSIC : TRACK);
}

void drawFoot(Brush* brush, Box box, const PlayingView& media) {
  drawProgress(brush, box.takeTop(PROGRESS_HEIGHT), media);
  box.takeTop(6);
  drawModes(brush, box, media);
  if (!media.known) return;
  brush->text(clockWords(media.positionSeconds), box, SMALL);
  if (media.durationSeconds > 0) brush->text(clockWords(media.durationSeconds), box, SMALL, Align::right);
}

std::string songOf(const PlayingView& media) {
  if (!media.known) return "Nothing plays";
  return media.song.empty() ? "Unknown song" : media.song;
}

void drawNames(Brush* brush, Box box, const PlayingView& media, Align align) {
  const Colour ink = media.known ? INK : SOFT_INK;
  brush->text(songOf(media), box.takeTop(22), {TITLE.size, ink, true}, align);
  brush->text(media.artist, box.takeTop(18), BODY, align);
  if (box.height >= 15) brush->text(media.album, box.takeTop(16), SMALL, align);
}

// The source and the list, where there is room to spare.
void drawOrigin(Brush* brush, const Box& box, const PlayingView& media) {
  const std::string between = media.source.empty() || media.playlist.empty() ? "" : "  \u00B7  ";
  brush->text(media.source + between + media.playlist, box, EYEBROW, Align::middle);
}

void drawTall(Brush* brush, Box box, const PlayingView& media) {
  const bool hasOrigin = !media.source.empty() || !media.playlist.empty();
  if (hasOrigin) {
    drawOrigin(brush, box.takeTop(14), media);
    box.takeTop(8);
  }
  drawFoot(brush, box.takeBottom(FOOT), media);
  box.takeBottom(8);
  const Box names = box.takeBottom(58);
  box.takeBottom(8);
  const double side = std::min(box.width, box.height);
  drawCover(brush, {box.middleX() - side / 2, box.middleY() - side / 2, side, side}, media);
  drawNames(brush, names, media, Align::middle);
}

void drawWide(Brush* brush, Box box, const PlayingView& media) {
  drawFoot(brush, box.takeBottom(FOOT), media);
  box.takeBottom(10);
  const double side = std::min(box.height, box.width * 0.42);
  drawCover(brush, {box.x, box.middleY() - side / 2, side, side}, media);
  box.takeLeft(side + 12);
  const double used = std::min(box.height, 56.0);
  drawNames(brush, {box.x, box.middleY() - used / 2, box.width, used}, media, Align::left);
}

void drawFlat(Brush* brush, Box box, const PlayingView& media) {
  drawProgress(brush, box.takeBottom(PROGRESS_HEIGHT), media);
  box.takeBottom(6);
  drawCover(brush, box.takeLeft(box.height), media);
  box.takeLeft(10);
  drawPlayState(brush, box.takeRight(ICON), media.playing, media.known ? SOFT_INK : TRACK);
  box.takeRight(8);
  brush->text(songOf(media), box.takeTop(box.height / 2), {LABEL.size, media.known ? INK : SOFT_INK, true});
  brush->text(media.artist, box, SMALL);
}

}  // namespace

void drawMediaCard(Brush* brush, const Box& box, const PlayingView& media) {
  brush->fill(box, CARD, CARD_RADIUS);
  const Box inside = box.inset(CARD_PADDING);
  if (inside.height >= 205) return drawTall(brush, inside, media);
  if (inside.height >= 90) return drawWide(brush, inside, media);
  drawFlat(brush, box.inset(std::min(CARD_PADDING, box.height / 6)), media);
}

}  // namespace headunit::strip
