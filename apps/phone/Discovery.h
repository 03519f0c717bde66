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

/// Which of the `allowed` indices of `sink`'s video configurations to play: the first of the wanted size and
/// frame rate, else the first of the wanted size, else the first. Empty if none of them names a configuration.
std::optional<std::uint32_t> chooseVideo(const MediaSinkService& sink, const std::vector<std::uint32_t>& allowed,
                                         PictureSize size, int fps);

}  // namespace phone

#endif
