#pragma once

#include "IMediaPlaybackStatusCallbacks.h"
#include "ProtocolEndpointBase.h"
#include "VantryExport.h"

/// The service that shows what the phone plays, and takes keys of the instrument cluster back to it. The
/// phone sends whenever it likes once the channel is open; nothing is kept or compared with what came before.
class VANTRY_EXPORT MediaPlaybackStatusEndpoint : public ProtocolEndpointBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter(). Keeps a reference to
  /// `playbackCallbacks` until destruction; with a pointer to no object messages count as handled and go
  /// nowhere.
  MediaPlaybackStatusEndpoint(int id, MessageRouter* messageRouter,
                              const shared_ptr<IMediaPlaybackStatusCallbacks>& playbackCallbacks);
  ~MediaPlaybackStatusEndpoint() override;

  /// Any thread: a key of the instrument cluster, an InstrumentClusterInput_InstrumentClusterAction (1 to 7).
  /// STATUS_INVALID_INPUT, and nothing sent, for any other number; otherwise STATUS_SUCCESS, also if no
  /// channel is open, which drops the message.
  int reportAction(unsigned int action);

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;

 private:
  int handleMediaPlaybackStatus(const MediaPlaybackStatus& status);
  int handleMediaPlaybackMetadata(const MediaPlaybackMetadata& metadata);

  shared_ptr<IMediaPlaybackStatusCallbacks> callbacks;
};
