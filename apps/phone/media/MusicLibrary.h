#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace phone {

struct Song {
  std::string path;  // empty for a song of the built-in library, which has no file
  std::string title;
  std::string artist;
  std::string album;
  std::string genre;
  std::int64_t durationMs = 0;      // 0 if the file does not tell
  std::vector<std::uint8_t> cover;  // a PNG or JPEG file's bytes; empty if there is none
};

/// The songs in a folder and the folders below it, in the order of their paths. A file without a title takes
/// its file name; other tags that are missing stay empty. A song without a picture of its own takes
/// cover.jpg, cover.png, folder.jpg or folder.png of its folder. Files without sound are passed over. An
/// empty list with a whole sentence in `*error` if the folder cannot be read or holds no songs.
std::vector<Song> scanMusic(const std::string& folder, std::string* error);

/// A few invented songs with generated cover art, the same each time.
std::vector<Song> builtInMusic();

}  // namespace phone
