#pragma once

#include "MediaListStruct.h"
#include "MediaSongStruct.h"

/// A list of the phone's media tree with a page of its songs.
struct MediaListNodeStruct {
  MediaListStruct list;
  int start = 0;  ///< index of the page's first song, unchecked
  int total = 0;  ///< number of songs in all, unchecked
  MediaSongStruct* songs =
      nullptr;  ///< `songCount` elements, never null; the host's, which releases it by delete[]
  unsigned int songCount = 0;
};
