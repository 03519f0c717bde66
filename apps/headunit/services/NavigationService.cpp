#include "headunit/services/NavigationService.h"

#include <spdlog/spdlog.h>

#include "headunit/Shortened.h"

namespace headunit {
namespace {

constexpr int SHORTEST_INTERVAL_MS = 500;
constexpr int IMAGE_SIDE = 128;
constexpr int IMAGE_DEPTH_BITS = 32;

}  // namespace

void NavigationService::answerThrough(NavigationStatusEndpoint* endpoint) {
  endpoint_ = endpoint;
  endpoint->setMinimumIntervalMs(SHORTEST_INTERVAL_MS);
  endpoint->setInstrumentClusterType(NavigationStatusService_InstrumentClusterType_IMAGE);
  endpoint->setImageWidth(IMAGE_SIDE);
  endpoint->setImageHeight(IMAGE_SIDE);
  endpoint->setImageColourDepthBits(IMAGE_DEPTH_BITS);
}

void NavigationService::opened() {
  context_.tally->count(&ServiceTotals::navigationOpened);
  endpoint_->start();
}

void NavigationService::closed() {
  newestTurn_.next();
  context_.cluster->change([](ClusterView& view) { view.turn = {}; });
}

void NavigationService::navigationStatus(int status) {
  const bool guiding = status == NavigationStatus_NavigationStatusEnum_ACTIVE;
  spdlog::debug("Guidance {}.", guiding ? "begins" : "ends");
  if (!guiding) newestTurn_.next();
  context_.cluster->change([guiding](ClusterView& view) {
    if (!guiding) view.turn = {};
    view.turn.guiding = guiding;
  });
}

// A phone that tells of a turn guides, whether or not it has said so before.
void NavigationService::navigationNextTurn(const std::string& road, int turnSide, int event,
                                           const std::string& image, int turnAngle, int turnNumber) {
  context_.tally->count(&ServiceTotals::turns);
  TurnView turn;
  turn.guiding = true;
  turn.road = shortened(road);
  turn.side = turnSide;
  turn.event = event;
  turn.angle = turnAngle;
  turn.number = turnNumber;
  LateImages images(context_.images);
  turn.image = images.take(image, [](ClusterView& view, const Image& shown) { view.turn.image = shown; });
  const Newest::Ticket ticket = newestTurn_.next();
  context_.cluster->change([&turn](ClusterView& view) { view.turn = turn; });
  images.follow(ticket);
}

void NavigationService::navigationNextTurnDistance(int distanceMeters, int timeToTurnSeconds) {
  context_.tally->count(&ServiceTotals::distances);
  context_.cluster->change([=](ClusterView& view) {
    view.turn.meters = distanceMeters;
    view.turn.seconds = timeToTurnSeconds;
  });
}

}  // namespace headunit
