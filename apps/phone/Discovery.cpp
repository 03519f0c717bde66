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

namespace {

template <class Test>
const Service* findFirst(const ServiceDiscoveryResponse& services, Test test) {
  for (const Service& service : services.services()) {
    if (test(service)) return &service;
  }
  return nullptr;
}

bool isCustomary(const AudioConfiguration& format, AudioStreamType type) {
  if (type == AUDIO_STREAM_MEDIA) return format.sampling_rate() == 48000 && format.number_of_channels() == 2;
  return format.sampling_rate() == 16000 && format.number_of_channels() == 1;
}

}  // namespace

const Service* findVideoSink(const ServiceDiscoveryResponse& services) {
  for (const Service& service : services.services()) {
    if (service.has_media_sink_service() && service.media_sink_service().video_configs_size() > 0) {
      return &service;
    }
  }
  return nullptr;
}

std::vector<const Service*> findAudioSinks(const ServiceDiscoveryResponse& services) {
  std::vector<const Service*> found;
  for (const Service& service : services.services()) {
    if (service.has_media_sink_service() && service.media_sink_service().audio_configs_size() > 0) {
      found.push_back(&service);
    }
  }
  return found;
}

const Service* findMicrophone(const ServiceDiscoveryResponse& services) {
  return findFirst(services, [](const Service& service) { return service.has_media_source_service(); });
}

const Service* findSensors(const ServiceDiscoveryResponse& services) {
  return findFirst(services, [](const Service& service) { return service.has_sensor_source_service(); });
}

const Service* findInput(const ServiceDiscoveryResponse& services) {
  return findFirst(services, [](const Service& service) { return service.has_input_source_service(); });
}

const char* nameOf(AudioStreamType type) {
  switch (type) {
    case AUDIO_STREAM_GUIDANCE: return "guidance";
    case AUDIO_STREAM_SYSTEM_AUDIO: return "system";
    case AUDIO_STREAM_MEDIA: return "media";
    case AUDIO_STREAM_TELEPHONY: return "telephony";
  }
  return "unknown";
}

const char* nameOf(SensorType type) {
  static const char* const names[] = {
      "location",       "compass",        "speed",        "rpm",        "odometer",    "fuel",
      "parking_brake",  "gear",           "diagnostics",  "night_mode", "environment", "hvac",
      "driving_status", "dead_reckoning", "passenger",    "door",       "light",       "tire_pressure",
      "accelerometer",  "gyroscope",      "gps_satellite"};
  return SensorType_IsValid(type) ? names[type - 1] : "unknown";
}

bool isPlayable(const AudioConfiguration& format) {
  return format.number_of_bits() == 16 && format.sampling_rate() >= 8000 &&
         format.sampling_rate() <= 192000 && format.number_of_channels() >= 1 &&
         format.number_of_channels() <= 8;
}

std::optional<std::uint32_t> chooseAudio(const MediaSinkService& sink,
                                         const std::vector<std::uint32_t>& allowed) {
  std::optional<std::uint32_t> best;
  for (const std::uint32_t index : allowed) {
    if (index >= static_cast<std::uint32_t>(sink.audio_configs_size())) continue;
    const AudioConfiguration& offered = sink.audio_configs(static_cast<int>(index));
    if (!isPlayable(offered)) continue;
    if (isCustomary(offered, sink.audio_type())) return index;
    if (!best) best = index;
  }
  return best;
}

std::optional<std::uint32_t> chooseVideo(const MediaSinkService& sink,
                                         const std::vector<std::uint32_t>& allowed, PictureSize size,
                                         int fps) {
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
