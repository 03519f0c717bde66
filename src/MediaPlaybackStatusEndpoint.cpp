#include "MediaPlaybackStatusEndpoint.h"

#include <utility>

#include "InstrumentCluster.h"
#include "Message.h"

MediaPlaybackStatusEndpoint::MediaPlaybackStatusEndpoint(
    int id, MessageRouter* messageRouter, const shared_ptr<IMediaPlaybackStatusCallbacks>& playbackCallbacks)
    : ProtocolEndpointBase(id, messageRouter, false), callbacks(playbackCallbacks) {}

MediaPlaybackStatusEndpoint::~MediaPlaybackStatusEndpoint() = default;

int MediaPlaybackStatusEndpoint::routeMessage(unsigned char, unsigned short type,
                                              const shared_ptr<IoBuffer>& message) {
  using Self = MediaPlaybackStatusEndpoint;
  switch (type) {
    case MESSAGE_MEDIA_PLAYBACK_STATUS: return handleRecord(this, message, &Self::handleMediaPlaybackStatus);
    case MESSAGE_MEDIA_PLAYBACK_METADATA:
      return handleRecord(this, message, &Self::handleMediaPlaybackMetadata);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}

void MediaPlaybackStatusEndpoint::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  service->mutable_media_playback_service();
}

int MediaPlaybackStatusEndpoint::handleMediaPlaybackStatus(const MediaPlaybackStatus& status) {
  if (!callbacks) return STATUS_SUCCESS;
  MediaPlaybackStatusStruct copy;
  copy.state = status.state();
  copy.mediaSource = status.media_source();
  copy.playbackSeconds = status.playback_seconds();
  copy.shuffle = status.shuffle();
  copy.repeat = status.repeat();
  copy.repeatOne = status.repeat_one();
  callbacks->mediaPlaybackStatus(std::move(copy));
  return STATUS_SUCCESS;
}

int MediaPlaybackStatusEndpoint::handleMediaPlaybackMetadata(const MediaPlaybackMetadata& metadata) {
  if (!callbacks) return STATUS_SUCCESS;
  MediaPlaybackMetadataStruct copy;
  copy.song = metadata.song();
  copy.album = metadata.album();
  copy.artist = metadata.artist();
  copy.albumArt = metadata.album_art();
  copy.playlist = metadata.playlist();
  copy.durationSeconds = metadata.duration_seconds();
  copy.rating = metadata.rating();
  callbacks->mediaPlaybackMetadata(std::move(copy));
  return STATUS_SUCCESS;
}

int MediaPlaybackStatusEndpoint::reportAction(unsigned int action) {
  if (!isInstrumentClusterAction(action)) return STATUS_INVALID_INPUT;
  InstrumentClusterInput input;
  setInstrumentClusterAction(action, &input);
  sendRecord(MESSAGE_INSTRUMENT_CLUSTER_INPUT, input);
  return STATUS_SUCCESS;
}
