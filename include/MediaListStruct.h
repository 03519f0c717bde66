#pragma once

#include <string>

/// One of the lists of a media source.
struct MediaListStruct {
  std::string path;  ///< opaque: the phone gives it out and takes it back
  int type = 1;      ///< a MediaList_Type
  std::string name;
  std::string albumArt;  ///< raw bytes of an image, zero bytes included
};
