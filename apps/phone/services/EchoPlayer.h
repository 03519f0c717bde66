#ifndef PHONE_SERVICES_ECHOPLAYER_H
#define PHONE_SERVICES_ECHOPLAYER_H

#include "phone/services/ServicePlayer.h"

namespace phone {

/// The phone's half of the example host's own service, which sends back whatever it gets: it says something
/// every few seconds.
class EchoPlayer : public ServicePlayer {
 public:
  using ServicePlayer::ServicePlayer;

  /// The name under which the example host offers the service. What others take is not known.
  static constexpr const char* SERVICE_NAME = "com.example.headunit.echo";

  void onOpened() override { onTime(); }

 private:
  void onTime() override;

  int count_ = 0;
};

}  // namespace phone

#endif
