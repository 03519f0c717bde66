#pragma once

#include <string>

/// One of the songs of a media list.
struct MediaSongStruct {
  std::string path;  ///< opaque: the phone gives it out and takes it back
  std::string name;
  std::string artist;
  std::string album;
};
