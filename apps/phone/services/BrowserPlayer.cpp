#include "phone/services/BrowserPlayer.h"

#include <algorithm>
#include <cstdlib>

namespace phone {

namespace {

constexpr int pageSize = 10;
constexpr char sourcePath[] = "/library";
constexpr char songPrefix[] = "/song/";

// The elements of a page; a start beyond the end gives none.
std::pair<int, int> page(int start, std::size_t total) {
  const int all = static_cast<int>(total);
  const int first = std::clamp(start, 0, all);
  return {first, std::min(first + pageSize, all)};
}

}  // namespace

BrowserPlayer::BrowserPlayer(PhoneLink* link, Timers* timers, Playlist* playlist)
    : ServicePlayer(link, timers), playlist_(playlist) {
  addLists("album", MediaList_Type_ALBUM, &Song::album);
  addLists("artist", MediaList_Type_ARTIST, &Song::artist);
}

void BrowserPlayer::addLists(const char* kind, MediaList_Type type, std::string Song::*field) {
  const std::size_t first = lists_.size();
  const auto& songs = playlist_->songs();
  for (std::size_t i = 0; i < songs.size(); ++i) {
    const std::string& name = songs[i].*field;
    const auto begin = lists_.begin() + static_cast<std::ptrdiff_t>(first);
    auto known =
        std::find_if(begin, lists_.end(), [&name](const List& list) { return list.record.name() == name; });
    if (known == lists_.end()) {
      List list;
      list.record.set_path(std::string(sourcePath) + "/" + kind + "/" +
                           std::to_string(lists_.size() - first));
      list.record.set_type(type);
      list.record.set_name(name);
      list.record.set_album_art(songs[i].cover.data(), songs[i].cover.size());
      known = lists_.insert(lists_.end(), std::move(list));
    }
    known->songs.push_back(i);
  }
}

void BrowserPlayer::onMessage(const Message& message) {
  if (message.type() == MESSAGE_MEDIA_GET_NODE) {
    if (const auto request = message.as<MediaGetNode>()) answer(*request);
  } else if (message.type() == MESSAGE_MEDIA_BROWSER_INPUT) {
    const auto input = message.as<MediaBrowserInput>();
    const auto index = input ? songAt(input->path()) : std::nullopt;
    if (index && input->input().action() == InstrumentClusterInput::ENTER) playlist_->play(*index);
  }
}

void BrowserPlayer::answer(const MediaGetNode& request) {
  const std::string& path = request.path();
  const bool art = request.get_album_art();
  if (path == sourcePath) return sendSource(request.start(), art);
  if (const auto index = songAt(path)) return sendSong(*index, art);
  const auto list = std::find_if(lists_.begin(), lists_.end(),
                                 [&path](const List& one) { return one.record.path() == path; });
  if (list != lists_.end()) return sendList(*list, request.start(), art);
  sendRoot(art);
}

MediaSource BrowserPlayer::source(bool art) const {
  MediaSource record;
  record.set_path(sourcePath);
  record.set_name("Library");
  const auto& cover = playlist_->songs().front().cover;
  if (art && !cover.empty()) record.set_album_art(cover.data(), cover.size());
  return record;
}

MediaSong BrowserPlayer::song(std::size_t index) const {
  const Song& one = playlist_->songs()[index];
  MediaSong record;
  record.set_path(songPrefix + std::to_string(index));
  record.set_name(one.title);
  record.set_artist(one.artist);
  record.set_album(one.album);
  return record;
}

std::optional<std::size_t> BrowserPlayer::songAt(const std::string& path) const {
  if (path.compare(0, sizeof songPrefix - 1, songPrefix) != 0) return std::nullopt;
  const std::string number = path.substr(sizeof songPrefix - 1);
  if (number.empty() || number.size() > 6 || number.find_first_not_of("0123456789") != std::string::npos)
    return std::nullopt;
  const auto index = static_cast<std::size_t>(std::strtoul(number.c_str(), nullptr, 10));
  if (index >= playlist_->songs().size()) return std::nullopt;
  return index;
}

void BrowserPlayer::sendRoot(bool art) {
  MediaRootNode node;
  node.set_path("/");
  *node.add_media_sources() = source(art);
  send(MESSAGE_MEDIA_ROOT_NODE, node);
}

void BrowserPlayer::sendSource(int start, bool art) {
  const auto [first, last] = page(start, lists_.size());
  MediaSourceNode node;
  *node.mutable_source() = source(art);
  node.set_start(first);
  node.set_total(static_cast<int>(lists_.size()));
  for (int i = first; i < last; ++i) {
    MediaList* list = node.add_lists();
    *list = lists_[static_cast<std::size_t>(i)].record;
    if (!art) list->clear_album_art();
  }
  send(MESSAGE_MEDIA_SOURCE_NODE, node);
}

void BrowserPlayer::sendList(const List& list, int start, bool art) {
  const auto [first, last] = page(start, list.songs.size());
  MediaListNode node;
  *node.mutable_list() = list.record;
  if (!art) node.mutable_list()->clear_album_art();
  node.set_start(first);
  node.set_total(static_cast<int>(list.songs.size()));
  for (int i = first; i < last; ++i) *node.add_songs() = song(list.songs[static_cast<std::size_t>(i)]);
  send(MESSAGE_MEDIA_LIST_NODE, node);
}

void BrowserPlayer::sendSong(std::size_t index, bool art) {
  const Song& one = playlist_->songs()[index];
  MediaSongNode node;
  *node.mutable_song() = song(index);
  if (art && !one.cover.empty()) node.set_album_art(one.cover.data(), one.cover.size());
  node.set_duration_seconds(static_cast<std::uint32_t>(one.durationMs / 1000));
  send(MESSAGE_MEDIA_SONG_NODE, node);
}

}  // namespace phone
