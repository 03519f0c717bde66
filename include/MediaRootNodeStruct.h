#pragma once

#include <string>

#include "MediaSourceStruct.h"

/// The top of the phone's media tree.
struct MediaRootNodeStruct {
  std::string path;  ///< opaque: the phone gives it out and takes it back
  MediaSourceStruct* mediaSources =
      nullptr;  ///< `mediaSourceCount` elements, never null; the host's, for delete[]
  unsigned int mediaSourceCount = 0;
};
