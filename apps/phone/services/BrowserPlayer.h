#ifndef PHONE_SERVICES_BROWSERPLAYER_H
#define PHONE_SERVICES_BROWSERPLAYER_H

#include "phone/services/Playlist.h"
#include "phone/services/ServicePlayer.h"

namespace phone {

/// Lets the head unit browse the songs, page by page: a root, one source, a list for each album and each
/// artist, songs. Enter on a song plays it.
///
///   ""  or "/"             the root
///   "/library"             the source
///   "/library/album/2"     the third album; likewise "artist"
///   "/song/7"              the eighth song
///
/// A path that names nothing is answered by the root.
class BrowserPlayer : public ServicePlayer {
 public:
  BrowserPlayer(PhoneLink* link, Timers* timers, Playlist* playlist);
  void onMessage(const Message& message) override;

 private:
  struct List {
    MediaList record;
    std::vector<std::size_t> songs;
  };
  void addLists(const char* kind, MediaList_Type type, std::string Song::*field);
  void answer(const MediaGetNode& request);
  void sendRoot(bool art);
  void sendSource(int start, bool art);
  void sendList(const List& list, int start, bool art);
  void sendSong(std::size_t index, bool art);
  MediaSource source(bool art) const;
  MediaSong song(std::size_t index) const;
  std::optional<std::size_t> songAt(const std::string& path) const;

  Playlist* playlist_;
  std::vector<List> lists_;
};

}  // namespace phone

#endif
