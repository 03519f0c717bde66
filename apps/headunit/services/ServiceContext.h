#pragma once

#include <MessageRouter.h>

#include <functional>

#include "headunit/Clock.h"
#include "headunit/Cluster.h"
#include "headunit/services/LateImages.h"
#include "headunit/services/ServiceTotals.h"

namespace headunit {

/// What each service of the cluster works with. All that is pointed at outlives the services.
struct ServiceContext {
  MessageRouter* router = nullptr;
  Cluster* cluster = nullptr;
  ImageLoader* images = nullptr;
  ServiceTally* tally = nullptr;
  std::function<TimePoint()> now = Clock::now;
};

/// A phone's text as it goes into the view: a screen has no use for more, and laying out megabytes takes
/// seconds.
std::string forScreen(const std::string& text);

}  // namespace headunit
