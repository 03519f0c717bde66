#ifndef PHONE_SERVICES_PLAYLIST_H
#define PHONE_SERVICES_PLAYLIST_H

#include <protos.pb.h>

#include <functional>

#include "phone/media/MusicLibrary.h"

namespace phone {

/// The songs that the phone has, and the one that it plays. Shared by all who show or change it.
class Playlist {
 public:
  /// At least one song.
  explicit Playlist(std::vector<Song> songs) : songs_(std::move(songs)) {}

  const std::vector<Song>& songs() const { return songs_; }
  const Song& current() const { return songs_[index_]; }
  bool isPlaying() const { return playing_; }
  std::uint32_t seconds() const { return seconds_; }

  void play(std::size_t index);
  void step(int by);
  void toggle();
  /// A second has gone by. At the song's end the next begins.
  void tick();
  /// Called after each change of song or state.
  void onChange(std::function<void()> call) { changed_ = std::move(call); }

 private:
  void tell() const {
    if (changed_) changed_();
  }
  std::vector<Song> songs_;
  std::size_t index_ = 0;
  bool playing_ = true;
  std::uint32_t seconds_ = 0;
  std::function<void()> changed_;
};

}  // namespace phone

#endif
