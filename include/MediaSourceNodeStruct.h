#pragma once

#include "MediaListStruct.h"
#include "MediaSourceStruct.h"

/// A source of the phone's media tree with a page of its lists.
struct MediaSourceNodeStruct {
  MediaSourceStruct source;
  int start = 0;  ///< index of the page's first list, unchecked
  int total = 0;  ///< number of lists in all, unchecked
  MediaListStruct* lists =
      nullptr;  ///< `listCount` elements, never null; the host's, which releases it by delete[]
  unsigned int listCount = 0;
};
