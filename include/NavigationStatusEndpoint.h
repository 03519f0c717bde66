#pragma once

#include "INavigationStatusCallbacks.h"
#include "ProtocolEndpointBase.h"
#include "VantryExport.h"

/// The service that shows the phone's turn-by-turn guidance on an instrument cluster. Events are handed to
/// the host as they come, whether or not `start` was called, and none is kept.
class VANTRY_EXPORT NavigationStatusEndpoint : public ProtocolEndpointBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter(). Keeps a reference to
  /// `navigationCallbacks`, which must point to an object, until destruction.
  NavigationStatusEndpoint(int id, MessageRouter* messageRouter,
                           const shared_ptr<INavigationStatusCallbacks>& navigationCallbacks);
  ~NavigationStatusEndpoint() override;

  // What discovery tells the phone of the cluster, each 0 until set. Before discovery.

  /// Shortest time between two updates, in milliseconds; a wish that nothing here enforces.
  void setMinimumIntervalMs(int milliseconds) { minimumIntervalMs = milliseconds; }
  /// Height of a turn image in pixels. The three image values are advertised for a cluster of type IMAGE
  /// only.
  void setImageHeight(int pixels) { imageHeight = pixels; }
  /// Width of a turn image in pixels.
  void setImageWidth(int pixels) { imageWidth = pixels; }
  /// Bits of a turn image's pixel.
  void setImageColourDepthBits(int bits) { imageColourDepthBits = bits; }
  /// A NavigationStatusService_InstrumentClusterType: whether the cluster draws turn images or shows
  /// enumerated turns (initially ENUM). Anything else ends the process at discovery.
  void setInstrumentClusterType(int type) { instrumentClusterType = type; }

  /// Any thread: asks the phone for guidance events. Dropped while no channel is open, and not repeated when
  /// one opens; each call sends anew.
  void start();

  /// Any thread: asks the phone to send no more. Otherwise as `start`.
  void stop();

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;

 private:
  int handleNavigationStatus(const NavigationStatus& status);
  int handleNavigationNextTurnEvent(const NavigationNextTurnEvent& event);
  int handleNavigationDistanceEvent(const NavigationNextTurnDistanceEvent& event);

  int minimumIntervalMs = 0;
  int imageHeight = 0;
  int imageWidth = 0;
  int imageColourDepthBits = 0;
  int instrumentClusterType = NavigationStatusService_InstrumentClusterType_ENUM;
  shared_ptr<INavigationStatusCallbacks> callbacks;
};
