#include "headunit/services/PlaybackService.h"

#include "headunit/Shortened.h"

namespace headunit {

void PlaybackService::closed() {
  newestSong_.next();
  context_.cluster->change([](ClusterView& view) { view.media = {}; });
}

bool PlaybackService::press(InstrumentClusterInput_InstrumentClusterAction action) {
  if (!endpoint_->isChannelOpen()) return false;
  return endpoint_->reportAction(static_cast<unsigned int>(action)) == STATUS_SUCCESS;
}

void PlaybackService::mediaPlaybackStatus(MediaPlaybackStatusStruct status) {
  context_.tally->count(&ServiceTotals::playbackStates);
  context_.cluster->change([&status](ClusterView& view) {
    PlayingView& media = view.media;
    media.known = true;
    media.playing = status.state == MediaPlaybackStatus_State_PLAYING;
    media.source = shortened(status.mediaSource);
    media.positionSeconds = status.playbackSeconds;
    media.shuffle = status.shuffle;
    media.repeat = status.repeat;
    media.repeatOne = status.repeatOne;
  });
}

void PlaybackService::mediaPlaybackMetadata(MediaPlaybackMetadataStruct metadata) {
  context_.tally->count(&ServiceTotals::songs);
  LateImages images(context_.images);
  const Image cover =
      images.take(metadata.albumArt, [](ClusterView& view, const Image& image) { view.media.cover = image; });
  const Newest::Ticket ticket = newestSong_.next();
  context_.cluster->change([&](ClusterView& view) {
    PlayingView& media = view.media;
    media.known = true;
    media.song = shortened(metadata.song);
    media.artist = shortened(metadata.artist);
    media.album = shortened(metadata.album);
    media.playlist = shortened(metadata.playlist);
    media.durationSeconds = metadata.durationSeconds;
    media.cover = cover;
  });
  images.follow(ticket);
}

}  // namespace headunit
