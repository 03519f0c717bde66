#pragma once

#include <functional>
#include <vector>

#include "Numbered.h"
#include "RdsData.h"
#include "protos.pb.h"

namespace test {

using Number = std::uint64_t;

/// What the phone tells the services that carry no stream, each record filled from its number.
namespace told {
BluetoothPairingRequest pairing(Number n);
RadioSetStationRequest station(Number n);
RadioScanRequest scan(Number n);
NavigationStatus navigation(Number n);
NavigationNextTurnEvent turn(Number n);
NavigationNextTurnDistanceEvent distance(Number n);
MediaPlaybackStatus playback(Number n);
MediaPlaybackMetadata song(Number n);
PhoneStatus calls(Number n);
MediaRootNode rootNode(Number n);
MediaSourceNode sourceNode(Number n);
MediaListNode listNode(Number n);
MediaSongNode songNode(Number n);
GenericNotificationMessage notification(Number n);
GenericNotificationAck notificationAck(Number n);
VantryVerificationSetSensor setSensor(Number n);
VantryVerificationVideoFocus videoFocus(Number n);
VantryVerificationAudioFocus audioFocus(Number n);
VantryVerificationInjectInput injectInput(Number n);
}  // namespace told

/// What the host has to say to them, as far as it is no record of the wire.
RdsData stationData(Number n);
bool tunesTo(Number n);
unsigned int clusterKey(Number n);

/// One kind of message on the channel of a service, and its whole bytes by number.
struct MessageKind {
  int service;
  std::uint16_t type;
  std::function<Bytes(Number)> message;
};

/// All that the phone tells, by FullHeadUnit's service ids.
const std::vector<MessageKind>& toldByThePhone();
/// All that it has to hear in return.
const std::vector<MessageKind>& heardByThePhone();

}  // namespace test
