#include "phone/media/MusicLibrary.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "phone/media/CoverArt.h"
#include "phone/media/MediaDecoder.h"

namespace phone {
namespace {

namespace fs = std::filesystem;

constexpr int COVER_SIZE = 256;
constexpr std::uintmax_t LARGEST_COVER = 16 * 1024 * 1024;

struct BuiltInSong {
  const char* title;
  int seconds;
};

struct BuiltInAlbum {
  const char* artist;
  const char* album;
  const char* genre;
  std::array<BuiltInSong, 3> songs;
};

constexpr std::array<BuiltInAlbum, 3> ALBUMS{{
    {"The Oscillators",
     "Evening Drive",
     "Electronic",
     {{{"Slip Road", 214}, {"Amber Lights", 187}, {"Last Exit", 251}}}},
    {"Carrier Wave", "Night Signals", "Ambient", {{{"Clear Sky", 302}, {"Long Wave", 278}, {"Beacon", 196}}}},
    {"Square Harbour", "Low Tide", "Indie", {{{"Breakwater", 203}, {"Salt Wind", 176}, {"Homeward", 229}}}},
}};

std::vector<std::uint8_t> readFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::uint8_t> attachedPicture(const AVFormatContext& format) {
  for (unsigned int i = 0; i < format.nb_streams; ++i) {
    const AVPacket& picture = format.streams[i]->attached_pic;
    if (picture.size > 0) return {picture.data, picture.data + picture.size};
  }
  return {};
}

std::vector<std::uint8_t> folderPicture(const fs::path& folder) {
  for (const char* name : {"cover.jpg", "cover.png", "folder.jpg", "folder.png"}) {
    std::error_code none;
    const auto size = fs::file_size(folder / name, none);
    if (!none && size > 0 && size <= LARGEST_COVER) return readFile(folder / name);
  }
  return {};
}

bool hasMovingPicture(const AVFormatContext& format) {
  for (unsigned int i = 0; i < format.nb_streams; ++i) {
    const AVStream& stream = *format.streams[i];
    const bool cover = (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
    if (stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !cover) return true;
  }
  return false;
}

std::optional<Song> readSong(const fs::path& path) {
  std::string ignored;
  // Any file with the right few bits in it passes for a piece of MP3, until it is to be decoded.
  const auto decoder = MediaDecoder::open(path.string(), AVMEDIA_TYPE_AUDIO, &ignored);
  if (!decoder || hasMovingPicture(decoder->demuxer().format())) return {};
  const Demuxer& file = decoder->demuxer();
  Song song;
  song.path = path.string();
  song.title = file.tag("title");
  if (song.title.empty()) song.title = path.stem().string();
  song.artist = file.tag("artist");
  song.album = file.tag("album");
  song.genre = file.tag("genre");
  song.durationMs = std::max<std::int64_t>(file.format().duration, 0) / (AV_TIME_BASE / 1000);
  song.cover = attachedPicture(file.format());
  if (song.cover.empty()) song.cover = folderPicture(path.parent_path());
  return song;
}

std::vector<fs::path> filesIn(const std::string& folder, std::error_code* failure) {
  std::vector<fs::path> files;
  fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, *failure);
  for (; !*failure && entry != fs::recursive_directory_iterator(); entry.increment(*failure)) {
    std::error_code ignored;
    if (entry->is_regular_file(ignored)) files.push_back(entry->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

std::vector<Song> scanMusic(const std::string& folder, std::string* error) {
  std::error_code failure;
  std::vector<Song> songs;
  for (const fs::path& path : filesIn(folder, &failure)) {
    if (std::optional<Song> song = readSong(path)) songs.push_back(std::move(*song));
  }
  if (failure && songs.empty()) {
    *error = "The folder '" + folder + "' cannot be read: " + failure.message() + ".";
  } else if (songs.empty()) {
    *error = "The folder '" + folder + "' holds no songs.";
  }
  return songs;
}

std::vector<Song> builtInMusic() {
  std::vector<Song> songs;
  unsigned int design = 0;
  for (const BuiltInAlbum& album : ALBUMS) {
    const std::vector<std::uint8_t> cover = drawCover(design++, COVER_SIZE);
    for (const BuiltInSong& song : album.songs) {
      songs.push_back({"", song.title, album.artist, album.album, album.genre, song.seconds * 1000, cover});
    }
  }
  return songs;
}

}  // namespace phone
