#pragma once

#include <string>

#include "MediaSongStruct.h"

/// A song of the phone's media tree in full.
struct MediaSongNodeStruct {
  MediaSongStruct song;
  std::string albumArt;  ///< raw bytes of an image, zero bytes included
  unsigned int durationSeconds = 0;
};
