#include "VideoSink.h"

VideoSink::VideoSink(int id, MessageRouter* messageRouter,
                     const shared_ptr<IVideoSinkCallbacks>& sinkCallbacks)
    : MediaSinkBase(id, messageRouter), callbacks(sinkCallbacks) {
  codecType = MEDIA_CODEC_VIDEO;
}

VideoSink::~VideoSink() = default;

int VideoSink::addSupportedConfiguration(int codecResolution, int frameRate, int widthMargin,
                                         int heightMargin, int density) {
  const shared_ptr<VideoConfiguration> configuration(new VideoConfiguration());
  configuration->set_codec_resolution(static_cast<VideoCodecResolutionType>(codecResolution));
  configuration->set_frame_rate(frameRate == 60 ? VIDEO_FPS_60 : VIDEO_FPS_30);
  configuration->set_width_margin(static_cast<unsigned int>(widthMargin));
  configuration->set_height_margin(static_cast<unsigned int>(heightMargin));
  configuration->set_density(static_cast<unsigned int>(density));
  videoConfigurations.push_back(configuration);
  return static_cast<int>(videoConfigurations.size()) - 1;
}

unsigned int VideoSink::getNumberOfConfigurations() {
  return static_cast<unsigned int>(videoConfigurations.size());
}

int VideoSink::codecResolutionToPixels(VideoConfiguration const& configuration, int* width, int* height) {
  switch (configuration.codec_resolution()) {
    case VIDEO_800x480: *width = 800, *height = 480; return STATUS_SUCCESS;
    case VIDEO_1280x720: *width = 1280, *height = 720; return STATUS_SUCCESS;
    case VIDEO_1920x1080: *width = 1920, *height = 1080; return STATUS_SUCCESS;
  }
  return STATUS_INVALID_CONFIGURATION;
}

void VideoSink::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  MediaSinkService* const sink = service->mutable_media_sink_service();
  sink->set_available_type(static_cast<MediaCodecType>(codecType));
  for (const shared_ptr<VideoConfiguration>& configuration : videoConfigurations) {
    *sink->add_video_configs() = *configuration;
  }
}

int VideoSink::handleSetup(int mediaCodecType) {
  if (mediaCodecType != MEDIA_CODEC_VIDEO) return STATUS_INVALID_CONFIGURATION;  // whatever was advertised
  callbacks->setup(MEDIA_CODEC_VIDEO);
  sendConfig(Config::STATUS_READY);
  if (grantFocusOnSetup) setVideoFocus(VIDEO_FOCUS_MODE_1, true);
  return STATUS_SUCCESS;
}

void VideoSink::setVideoFocus(int focusMode, bool unsolicited) {
  VideoFocusNotification notification;
  notification.set_focus(static_cast<VideoFocusMode>(focusMode));
  notification.set_unsolicited(unsolicited);
  sendRecord(MESSAGE_VIDEO_FOCUS_NOTIFICATION, notification);
}

bool VideoSink::handleVideoFocusRequest(VideoFocusRequestNotification const& request) {
  callbacks->videoFocusRequest(request.mode(), request.reason());  // an absent reason reads as 0
  return true;
}

void VideoSink::handleDataAvailable(unsigned long long timestamp, shared_ptr<IoBuffer> const& buffer,
                                    unsigned int offset) {
  callbacks->dataAvailable(sessionId, timestamp, buffer, buffer->content() + offset, buffer->size() - offset);
}

void VideoSink::handleCodecConfig(void* data, unsigned int length) { callbacks->codecConfig(data, length); }

int VideoSink::handleMediaConfiguration(int configurationIndex) {
  callbacks->mediaConfiguration(configurationIndex);
  return STATUS_SUCCESS;
}

void VideoSink::playbackStart(int session) { callbacks->playbackStart(session); }

void VideoSink::playbackStop(int session) { callbacks->playbackStop(session); }
