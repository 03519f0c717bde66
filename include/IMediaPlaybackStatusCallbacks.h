#pragma once

#include "MediaPlaybackMetadataStruct.h"
#include "MediaPlaybackStatusStruct.h"
#include "VantryExport.h"

/// What the host hears of the phone's player. Both operations run on the reader thread, independently of each
/// other: neither follows the other. The arguments are the host's own copies, bytes of pictures included.
class VANTRY_EXPORT IMediaPlaybackStatusCallbacks {
 public:
  virtual ~IMediaPlaybackStatusCallbacks() = default;

  virtual void mediaPlaybackStatus(MediaPlaybackStatusStruct status) = 0;
  virtual void mediaPlaybackMetadata(MediaPlaybackMetadataStruct metadata) = 0;
};
