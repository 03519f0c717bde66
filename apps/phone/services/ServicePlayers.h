#ifndef PHONE_SERVICES_SERVICEPLAYERS_H
#define PHONE_SERVICES_SERVICEPLAYERS_H

#include <memory>

#include "phone/services/CarPlayers.h"
#include "phone/services/Playlist.h"

namespace phone {

/// Opens every service beside picture, sound and the vehicle's own, as soon as the link is up, and plays a
/// phone on each. `link` and `timers` outlive it; it outlives the link's end.
class ServicePlayers : public LinkObserver {
 public:
  /// `songs`, at least one, are what plays and what can be browsed. `drive` tells how far the picture that is
  /// shown has got on the route, if one shows it.
  ServicePlayers(PhoneLink* link, Timers* timers, std::vector<Song> songs, RouteClock drive = nullptr);

  void onState(LinkState state) override;

  const Playlist& playlist() const { return playlist_; }
  /// How many services were opened.
  std::size_t count() const { return players_.size(); }

 private:
  std::unique_ptr<ServicePlayer> playerFor(const Service& service);

  PhoneLink* link_;
  Timers* timers_;
  Playlist playlist_;
  RouteClock drive_;
  std::vector<std::unique_ptr<ServicePlayer>> players_;
};

}  // namespace phone

#endif
