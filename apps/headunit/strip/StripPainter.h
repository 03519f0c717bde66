#pragma once

#include <vector>

#include "headunit/Cluster.h"
#include "headunit/KeyMode.h"

namespace headunit {

/// A place of the strip that does something when it is clicked: the keys that are then pressed, in order, for
/// as long as they mean what they meant when it was drawn.
struct StripTarget {
  Rect place;
  std::vector<ClusterKey> keys;
  KeyMode mode = {};
};

struct StripDrawing {
  Bitmap bitmap;  ///< opaque
  std::vector<StripTarget> targets;
};

/// Draws what stands beside the picture: signal, next turn, tuner, calls, and what plays or what can be
/// played, with a notice and a question over it. Any thread, any number at once. `size` may be any; without
/// a pixel there is nothing in the bitmap. A notice is drawn until its time has come.
StripDrawing drawStrip(const ClusterView& view, Size size, TimePoint now);

}  // namespace headunit
