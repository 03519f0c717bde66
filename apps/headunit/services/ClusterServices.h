#pragma once

#include <vector>

#include "headunit/Equipment.h"
#include "headunit/services/BrowserService.h"
#include "headunit/services/EchoService.h"
#include "headunit/services/NavigationService.h"
#include "headunit/services/NotificationService.h"
#include "headunit/services/PairingService.h"
#include "headunit/services/PhoneService.h"
#include "headunit/services/PlaybackService.h"
#include "headunit/services/RadioService.h"

namespace headunit {

/// All services of one link that fill the cluster, and what its keys do. The first column that applies
/// counts:
///
///                  a phone asks      a call    a notice    the list    there is    otherwise
///                  to be paired      rings     is shown    is open     a call
///     up, down                       phone                 entry       phone       playback
///     left, right                    phone                 page        phone       playback
///     enter        accepts           phone                 into it     phone       playback
///     back         refuses           phone     hides it    out of it   phone       playback
///     call         phone, whatever else there is
///     browser      shows and hides the list of what can be played
///     radio        switches the tuner on and off
///
/// "phone" and "playback" stand for the key's action, sent to the phone by that service. An empty place under
/// a pairing does nothing; the other empty ones leave it to the columns on their right.
class ClusterServices : public ClusterKeyListener {
 public:
  ClusterServices(const Equipment& equipment, MessageRouter* router);
  ~ClusterServices() override { end(); }
  ClusterServices(const ClusterServices&) = delete;
  ClusterServices& operator=(const ClusterServices&) = delete;

  /// What the link registers.
  std::vector<ProtocolEndpointBase*> endpoints();
  /// Whose time the link drives.
  PacedTask* tuner() { return radio_.host().tuner(); }

  /// Empties the cluster of what the last phone left there, and takes the keys. `link`: by which its pictures
  /// are known.
  void begin(const LinkStats* link);
  /// Any thread: the phone is about to be sent away.
  void leave() { navigation_.host().stop(); }
  /// Gives the keys back. May be called again.
  void end();
  /// After the phone's last picture: marks what stands there as left by a phone that has gone.
  void gone();

  ServiceTotals totals() const;

  void clusterKey(ClusterKey key) override;

 private:
  using Action = InstrumentClusterInput_InstrumentClusterAction;
  void press(ClusterKey key, Action action);
  void answerPairing(ClusterKey key);
  void pressInBrowser(ClusterKey key);

  ClusterKeys* const keys_;
  ServiceTally tally_;
  ImageLoader images_;
  const ServiceContext context_;
  PairingEndpoint pairing_;
  TunerEndpoint radio_;
  NavigationEndpoint navigation_;
  PlaybackEndpoint playback_;
  PhoneEndpoint phone_;
  BrowserEndpoint browser_;
  NoticeEndpoint notifications_;
  EchoEndpoint echo_;
  bool attached_ = false;
};

}  // namespace headunit
