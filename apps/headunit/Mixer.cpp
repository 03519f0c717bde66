#include "headunit/Mixer.h"

#include <algorithm>
#include <limits>

namespace headunit {

void Mixer::add(std::shared_ptr<AudioStream> stream) {
  const std::lock_guard lock(mutex_);
  streams_.push_back(std::move(stream));
}

bool Mixer::mix(std::int16_t* out, std::size_t frames) {
  sum_.assign(frames * MIX_CHANNELS, 0);
  bool heard = false;
  {
    const std::lock_guard lock(mutex_);
    for (auto stream = streams_.begin(); stream != streams_.end();) {
      const bool over = (*stream)->isDetached();  // asked first, so that what came before is still played
      const bool sounds = (*stream)->addTo(sum_.data(), frames);
      heard = heard || sounds;
      stream = over && !sounds ? streams_.erase(stream) : stream + 1;
    }
  }
  std::transform(sum_.begin(), sum_.end(), out, [](std::int32_t sample) {
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(std::clamp<std::int32_t>(sample, Limits::min(), Limits::max()));
  });
  quiet_ = !heard;
  return heard;
}

}  // namespace headunit
