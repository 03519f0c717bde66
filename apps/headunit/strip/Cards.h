#pragma once

#include <vector>

#include "headunit/Cluster.h"
#include "headunit/ClusterKeys.h"
#include "headunit/strip/Brush.h"

namespace headunit::strip {

/// What becomes a StripTarget once the whole strip is drawn: still in the strip's own units, and without a
/// word on what its keys mean, which no single part knows.
struct Target {
  Box place;
  std::vector<ClusterKey> keys;
};
using Targets = std::vector<Target>;

// Each draws one part of the strip into its box, and nothing outside of it.

void drawStatus(Brush* brush, Box box, const ClusterView& view);
void drawTurnCard(Brush* brush, Box box, const TurnView& turn);
void drawMediaCard(Brush* brush, const Box& box, const PlayingView& media);
void drawTunerCard(Brush* brush, Box box, const TunerView& tuner);
void drawCallsCard(Brush* brush, Box box, const std::vector<CallView>& calls);
void drawBrowserCard(Brush* brush, Box box, const BrowserView& browser, Targets* targets);
/// Over whatever stands in `strip`.
void drawToast(Brush* brush, const Box& strip, const NoticeView& notice, Targets* targets);
void drawPairing(Brush* brush, const Box& strip, const PairingView& pairing, Targets* targets);

/// The height of a card that shows `count` calls.
double callsHeight(std::size_t count);

constexpr double CARD_RADIUS = 12;
constexpr double CARD_PADDING = 12;

}  // namespace headunit::strip
