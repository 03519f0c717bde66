#ifndef PHONE_DISCOVERY_H
#define PHONE_DISCOVERY_H

#include <protos.pb.h>

#include <optional>
#include <vector>

namespace phone {

struct PictureSize {
  int width = 800;
  int height = 480;
  bool operator==(const PictureSize& other) const { return width == other.width && height == other.height; }
};

/// The size in pixels that a resolution stands for.
PictureSize sizeOf(VideoCodecResolutionType resolution);

/// The first service that takes a picture; null if there is none.
const Service* findVideoSink(const ServiceDiscoveryResponse& services);

/// All services that take sound, in the order of the list.
std::vector<const Service*> findAudioSinks(const ServiceDiscoveryResponse& services);
/// The first service of its kind; null if there is none.
const Service* findMicrophone(const ServiceDiscoveryResponse& services);
const Service* findSensors(const ServiceDiscoveryResponse& services);
const Service* findInput(const ServiceDiscoveryResponse& services);

/// A short name for people: "media", "guidance", "system", "telephony".
const char* nameOf(AudioStreamType type);
/// Likewise: "location", "compass", ...
const char* nameOf(SensorType type);

/// True for what this phone can play and record: 16 bits, 8000 to 192000 Hz, 1 to 8 channels.
bool isPlayable(const AudioConfiguration& format);

/// Which of the `allowed` indices of `sink`'s formats to play: the first playable of the customary one for
/// its stream (48 kHz stereo for media, 16 kHz mono for all else), else the first playable. Empty if there is
/// none.
std::optional<std::uint32_t> chooseAudio(const MediaSinkService& sink,
                                         const std::vector<std::uint32_t>& allowed);

/// Which of the `allowed` indices of `sink`'s video configurations to play: the first of the wanted size and
/// frame rate, else the first of the wanted size, else the first. Empty if none of them names a
/// configuration.
std::optional<std::uint32_t> chooseVideo(const MediaSinkService& sink,
                                         const std::vector<std::uint32_t>& allowed, PictureSize size,
                                         int fps);

}  // namespace phone

#endif
