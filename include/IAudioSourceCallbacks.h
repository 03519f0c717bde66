#pragma once

#include "VantryExport.h"

/// What the host hears of the microphone service. All operations run on the reader thread. A callback may
/// send, call MessageRouter::closeChannel and Transport::requestStop; it must not call Transport::waitForExit
/// or VantryReceiver::shutdown, nor destroy the endpoint.
class VANTRY_EXPORT IAudioSourceCallbacks {
 public:
  virtual ~IAudioSourceCallbacks() = default;

  /// The phone acknowledges `ack` more blocks of the session `sessionId`; neither number is compared with
  /// what was sent.
  virtual void ackReceived(int sessionId, unsigned int ack) = 0;

  /// The phone opens the microphone, with or without active noise cancelling and echo cancelling, and wants
  /// at most `maxUnacked` blocks unacknowledged at once; or it closes it, with all other arguments false and
  /// 0. Returns the session id, 0 or more, or a negative MessageStatus, which refuses; both travel to the
  /// phone, for a closing as for an opening. Not called when the phone closes the channel or goes away.
  virtual int microphoneRequest(bool open, bool ancEnabled, bool ecEnabled, int maxUnacked) = 0;
};
