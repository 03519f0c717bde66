#pragma once

#include <string>

/// What the phone plays. A field that the phone left out is empty or 0.
struct MediaPlaybackMetadataStruct {
  std::string song;
  std::string album;
  std::string artist;
  std::string albumArt;  ///< raw bytes of an image, zero bytes included
  std::string playlist;
  unsigned int durationSeconds = 0;
  int rating = 0;  ///< in units of the phone's own
};
