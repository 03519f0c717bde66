#include "phone/services/ServicePlayers.h"

#include "phone/services/BrowserPlayer.h"
#include "phone/services/ClusterPlayers.h"
#include "phone/services/EchoPlayer.h"

namespace phone {

ServicePlayers::ServicePlayers(PhoneLink* link, Timers* timers, std::vector<Song> songs, RouteClock drive)
    : link_(link), timers_(timers), playlist_(std::move(songs)), drive_(std::move(drive)) {
  link_->observe(this);
}

void ServicePlayers::onState(LinkState state) {
  if (state != LinkState::up) return;
  for (const Service& service : link_->services()->services()) {
    auto player = playerFor(service);
    if (!player || link_->unusedChannel() == 0) continue;
    player->start(service.id());
    players_.push_back(std::move(player));
  }
}

std::unique_ptr<ServicePlayer> ServicePlayers::playerFor(const Service& service) {
  if (service.has_bluetooth_service()) {
    return std::make_unique<BluetoothPlayer>(link_, timers_, service.bluetooth_service());
  }
  if (service.has_radio_service())
    return std::make_unique<RadioPlayer>(link_, timers_, service.radio_service());
  if (service.has_navigation_status_service()) {
    return std::make_unique<RoutePlayer>(link_, timers_, service.navigation_status_service(), drive_);
  }
  if (service.has_media_playback_service())
    return std::make_unique<PlaybackPlayer>(link_, timers_, &playlist_);
  if (service.has_phone_status_service()) return std::make_unique<CallPlayer>(link_, timers_);
  if (service.has_media_browser_service()) return std::make_unique<BrowserPlayer>(link_, timers_, &playlist_);
  if (service.has_generic_notification_service()) return std::make_unique<NotificationPlayer>(link_, timers_);
  if (service.vendor_extension_service().service_name() == EchoPlayer::SERVICE_NAME)
    return std::make_unique<EchoPlayer>(link_, timers_);
  // What it takes is its vendor's secret, but a phone that opens all services opens this one too.
  if (service.has_vendor_extension_service()) return std::make_unique<ServicePlayer>(link_, timers_);
  return nullptr;
}

}  // namespace phone
