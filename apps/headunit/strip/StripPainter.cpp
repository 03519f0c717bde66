#include "headunit/strip/StripPainter.h"

#include <algorithm>
#include <cmath>

#include "headunit/Calls.h"
#include "headunit/strip/Cards.h"

namespace headunit {
namespace {

using namespace strip;

// The strip's own units: at least as many are there of each.
constexpr double LEAST_WIDTH = 300;
constexpr double LEAST_HEIGHT = 600;
constexpr int LARGEST = 16384;
constexpr std::uint32_t OPAQUE = 0xFF000000;

constexpr double MARGIN = 12;
constexpr double GAP = 8;
constexpr double STATUS_HEIGHT = 18;
constexpr double TURN_HEIGHT = 104;
constexpr double TUNER_HEIGHT = 70;
constexpr double FLAT_MEDIA_HEIGHT = 62;
constexpr std::size_t MOST_CALLS = 2;

std::size_t callsShown(const ClusterView& view) {
  return std::min(view.phone.calls.size(), view.browser.open ? 1 : MOST_CALLS);
}

// From the top and from the bottom; what plays, or what can be played, gets what is left in between.
void drawParts(Brush* brush, Box box, const ClusterView& view, Targets* targets) {
  drawStatus(brush, box.takeTop(STATUS_HEIGHT), view);
  box.takeTop(GAP);
  drawTurnCard(brush, box.takeTop(TURN_HEIGHT), view.turn);
  box.takeTop(GAP);
  if (const std::size_t calls = callsShown(view); calls > 0) {
    drawCallsCard(brush, box.takeTop(callsHeight(calls)), view.phone.calls);
    box.takeTop(GAP);
  }
  if (view.tuner.on) {
    drawTunerCard(brush, box.takeBottom(TUNER_HEIGHT), view.tuner);
    box.takeBottom(GAP);
  }
  if (view.browser.open) {
    drawMediaCard(brush, box.takeBottom(FLAT_MEDIA_HEIGHT), view.media);
    box.takeBottom(GAP);
    drawBrowserCard(brush, box, view.browser, targets);
  } else {
    drawMediaCard(brush, box, view.media);
  }
}

Rect inPixels(const Box& box, double scale) {
  const auto left = static_cast<int>(std::lround(box.x * scale));
  const auto top = static_cast<int>(std::lround(box.y * scale));
  return {left, top, static_cast<int>(std::lround(box.right() * scale)) - left,
          static_cast<int>(std::lround(box.bottom() * scale)) - top};
}

}  // namespace

StripDrawing drawStrip(const ClusterView& view, Size size, TimePoint now) {
  StripDrawing drawing;
  if (size.width <= 0 || size.height <= 0 || size.width > LARGEST || size.height > LARGEST) return drawing;
  drawing.bitmap.size = size;
  const auto pixels = static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
  drawing.bitmap.pixels.assign(pixels, OPAQUE + GROUND.rgb);
  const double scale = std::min(size.width / LEAST_WIDTH, size.height / LEAST_HEIGHT);
  const Box whole{0, 0, size.width / scale, size.height / scale};
  Targets targets;
  {
    Brush brush(&drawing.bitmap, scale);
    drawParts(&brush, whole.inset(MARGIN), view, &targets);
    if (view.notice && view.notice->until > now) drawToast(&brush, whole, *view.notice, &targets);
    // All keys are the call's then, so that a click elsewhere would take it or refuse it.
    if (rings(view.phone)) targets.clear();
    if (view.pairing) drawPairing(&brush, whole, *view.pairing, &targets);
  }
  const KeyMode mode = keyModeOf(view, now);
  for (Target& target : targets) {
    drawing.targets.push_back({inPixels(target.place, scale), std::move(target.keys), mode});
  }
  return drawing;
}

}  // namespace headunit
