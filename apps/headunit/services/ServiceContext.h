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

}  // namespace headunit
