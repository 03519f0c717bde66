#include "phone/services/Playlist.h"

namespace phone {

namespace {

constexpr std::uint32_t unknownLength = 180;

}  // namespace

void Playlist::play(std::size_t index) {
  index_ = index % songs_.size();
  seconds_ = 0;
  playing_ = true;
  tell();
}

void Playlist::step(int by) {
  const auto count = static_cast<int>(songs_.size());
  play(static_cast<std::size_t>(((static_cast<int>(index_) + by) % count + count) % count));
}

void Playlist::toggle() {
  playing_ = !playing_;
  tell();
}

void Playlist::tick() {
  if (!playing_) return;
  const auto length = static_cast<std::uint32_t>(current().durationMs / 1000);
  if (++seconds_ >= (length > 0 ? length : unknownLength)) step(1);
}

}  // namespace phone
