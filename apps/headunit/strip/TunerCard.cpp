#include <algorithm>

#include "headunit/strip/Cards.h"
#include "headunit/strip/Words.h"

namespace headunit::strip {
namespace {

// Of the band that is drawn; what lies outside stands at its end.
constexpr double BAND_START = 87.5e6;
constexpr double BAND_END = 108e6;
constexpr int TICKS = 41;  // every half megahertz

void drawBand(Brush* brush, const Box& box, int frequencyHz) {
  for (int i = 0; i <= TICKS; ++i) {
    const double height = box.height * (i % 5 == 0 ? 0.62 : 0.36);
    brush->fill({box.x + (box.width - 1) * i / TICKS, box.bottom() - height, 1, height}, TRACK);
  }
  const double share = std::clamp((frequencyHz - BAND_START) / (BAND_END - BAND_START), 0.0, 1.0);
  brush->fill({box.x + (box.width - 2.5) * share, box.y, 2.5, box.height}, RADIO, 1);
}

std::string modeOf(const TunerView& tuner) {
  if (tuner.scanning) return "SCANNING";
  return tuner.stereo ? "STEREO" : "";
}

}  // namespace

void drawTunerCard(Brush* brush, Box box, const TunerView& tuner) {
  brush->fill(box, CARD, CARD_RADIUS);
  box = box.inset(10);
  drawBand(brush, box.takeBottom(12), tuner.frequencyHz);
  box.takeBottom(5);
  const Type large{19, RADIO, true};
  const std::string frequency = frequencyWords(tuner.frequencyHz);
  brush->text(frequency, box.takeLeft(std::min(brush->widthOf(frequency, large) + 2, box.width * 0.6)),
              large);
  box.takeLeft(12);
  Box first = box.takeTop(box.height * 0.52);
  const std::string mode = modeOf(tuner);
  const Type tag{9, tuner.scanning ? RADIO : SOFT_INK, true};
  if (!mode.empty()) brush->text(mode, first.takeRight(brush->widthOf(mode, tag) + 2), tag, Align::right);
  brush->text(tuner.station, first, LABEL);
  brush->text(tuner.text, box, SMALL);
}

}  // namespace headunit::strip
