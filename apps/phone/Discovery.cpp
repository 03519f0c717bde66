#include "phone/Discovery.h"

namespace phone {

PictureSize sizeOf(VideoCodecResolutionType resolution) {
  switch (resolution) {
    case VIDEO_800x480: return {800, 480};
    case VIDEO_1280x720: return {1280, 720};
    case VIDEO_1920x1080: return {1920, 1080};
  }
  return {};
}

const Service* findVideoSink(const ServiceDiscoveryResponse& services) {
  for (const Service& service : services.services()) {
    if (service.has_media_sink_service() && service.media_sink_service().video_configs_size() > 0) {
      return &service;
    }
  }
  return nullptr;
}

std::optional<std::uint32_t> chooseVideo(const MediaSinkService& sink, const std::vector<std::uint32_t>& allowed,
                                         PictureSize size, int fps) {
  const VideoFrameRateType rate = fps == 60 ? VIDEO_FPS_60 : VIDEO_FPS_30;
  std::optional<std::uint32_t> best;
  int bestScore = -1;
  for (const std::uint32_t index : allowed) {
    if (index >= static_cast<std::uint32_t>(sink.video_configs_size())) continue;
    const VideoConfiguration& offered = sink.video_configs(static_cast<int>(index));
    const bool fits = sizeOf(offered.codec_resolution()) == size;
    const int score = !fits ? 0 : offered.frame_rate() == rate ? 2 : 1;
    if (score > bestScore) {
      best = index;
      bestScore = score;
    }
  }
  return best;
}

}  // namespace phone
