#pragma once

#include <string>

/// What the phone's player does. A field that the phone left out holds its default: the text empty, the rest
/// as here.
struct MediaPlaybackStatusStruct {
  int state = 1;                     ///< a MediaPlaybackStatus_State
  std::string mediaSource;           ///< name of the source
  unsigned int playbackSeconds = 0;  ///< position in the song
  bool shuffle = false;
  bool repeat = false;
  bool repeatOne = false;
};
