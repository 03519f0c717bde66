#pragma once

#include "MediaPlaybackMetadataStruct.h"
#include "MediaPlaybackStatusStruct.h"
#include "VantryExport.h"

/// What the host hears of the phone's player. Both operations run on the reader thread, independently of each
/// other: neither follows the other. The arguments are the host's own copies, bytes of pictures included. A
/// callback may send, call MessageRouter::closeChannel and Transport::requestStop; it must not call
/// Transport::waitForExit or VantryReceiver::shutdown, nor destroy the endpoint.
class VANTRY_EXPORT IMediaPlaybackStatusCallbacks {
 public:
  virtual ~IMediaPlaybackStatusCallbacks() = default;

  /// What the player does now, and where in the song it is.
  virtual void mediaPlaybackStatus(MediaPlaybackStatusStruct status) = 0;
  /// The song that it plays.
  virtual void mediaPlaybackMetadata(MediaPlaybackMetadataStruct metadata) = 0;
};
