#pragma once

#include <NavigationStatusEndpoint.h>

#include "headunit/services/Hosted.h"

namespace headunit {

/// Shows the phone's guidance: asks for it as soon as the phone opens the service, and keeps the next turn in
/// the cluster.
class NavigationService : public INavigationStatusCallbacks {
 public:
  using Interface = INavigationStatusCallbacks;

  explicit NavigationService(const ServiceContext& context) : context_(context) {}
  void answerThrough(NavigationStatusEndpoint* endpoint);
  void opened();
  void closed();

  /// Any thread: the phone need not guide any more.
  void stop() { endpoint_->stop(); }

  void navigationStatus(int status) override;
  void navigationNextTurn(const std::string& road, int turnSide, int event, const std::string& image,
                          int turnAngle, int turnNumber) override;
  void navigationNextTurnDistance(int distanceMeters, int timeToTurnSeconds) override;

 private:
  const ServiceContext context_;
  NavigationStatusEndpoint* endpoint_ = nullptr;
  Newest newestTurn_;
};

using NavigationEndpoint = Hosted<NavigationStatusEndpoint, NavigationService>;

}  // namespace headunit
