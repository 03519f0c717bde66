#pragma once

#include <MediaPlaybackStatusEndpoint.h>

#include "headunit/services/Hosted.h"

namespace headunit {

/// Shows what the phone plays, and hands the cluster's keys to its player.
class PlaybackService : public IMediaPlaybackStatusCallbacks {
 public:
  using Interface = IMediaPlaybackStatusCallbacks;

  explicit PlaybackService(const ServiceContext& context) : context_(context) {}
  void answerThrough(MediaPlaybackStatusEndpoint* endpoint) { endpoint_ = endpoint; }
  void opened() { context_.tally->count(&ServiceTotals::playbackOpened); }
  void closed();

  /// Any thread. False if there is no player to hear it.
  bool press(InstrumentClusterInput_InstrumentClusterAction action);

  void mediaPlaybackStatus(MediaPlaybackStatusStruct status) override;
  void mediaPlaybackMetadata(MediaPlaybackMetadataStruct metadata) override;

 private:
  const ServiceContext context_;
  MediaPlaybackStatusEndpoint* endpoint_ = nullptr;
  Newest newestSong_;
};

using PlaybackEndpoint = Hosted<MediaPlaybackStatusEndpoint, PlaybackService>;

}  // namespace headunit
