#ifndef PHONE_SERVICES_CARPLAYERS_H
#define PHONE_SERVICES_CARPLAYERS_H

#include <functional>
#include <optional>

#include "phone/media/Route.h"
#include "phone/services/ServicePlayer.h"

namespace phone {

/// Asks to be paired, and asks again for as long as the head unit wants it to wait.
class BluetoothPlayer : public ServicePlayer {
 public:
  BluetoothPlayer(PhoneLink* link, Timers* timers, const BluetoothService& service)
      : ServicePlayer(link, timers), service_(service) {}
  void onOpened() override { ask(); }
  void onMessage(const Message& message) override;
  bool isPaired() const { return paired_; }

 protected:
  void onTime() override { ask(); }

 private:
  void ask();
  BluetoothService service_;
  bool paired_ = false;
};

/// Tunes in, asks what the station is, and scans on from time to time.
class RadioPlayer : public ServicePlayer {
 public:
  RadioPlayer(PhoneLink* link, Timers* timers, const RadioService& service)
      : ServicePlayer(link, timers), service_(service) {}
  void onOpened() override;
  void onMessage(const Message& message) override;

 protected:
  void onTime() override;

 private:
  void tune(int frequency);
  RadioService service_;
};

/// The time since the drive began.
using RouteClock = std::function<Micros()>;

/// Guides along the route, from the head unit's start to its stop.
class RoutePlayer : public ServicePlayer {
 public:
  /// Without a `clock` the drive begins now.
  RoutePlayer(PhoneLink* link, Timers* timers, const NavigationStatusService& service, RouteClock clock);
  void onMessage(const Message& message) override;

 protected:
  void onTime() override;

 private:
  void tellTurn(std::size_t leg);
  void tellDistance(const Route::Place& place);

  const NavigationStatusService service_;
  const RouteClock clock_;
  const Micros began_;
  const Route route_;
  std::optional<std::size_t> leg_;  // whose turn has been told
};

}  // namespace phone

#endif
