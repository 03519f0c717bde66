#pragma once

#include <string>

/// One of the sources of the phone's media tree.
struct MediaSourceStruct {
  std::string path;  ///< opaque: the phone gives it out and takes it back
  std::string name;
  std::string albumArt;  ///< raw bytes of an image, zero bytes included
};
