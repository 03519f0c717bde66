#ifndef PHONE_PROGRAM_OPTIONS_H
#define PHONE_PROGRAM_OPTIONS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/OneFile.h"
#include "phone/Discovery.h"
#include "phone/Socket.h"

namespace phone {

/// What the command line says.
struct Options {
  bool listens = false;
  Endpoint endpoint;
  std::string credentials = "credentials";
  std::string video;  ///< Empty: the test picture.
  std::string audio;  ///< Empty: the video's own sound, or a tone.
  std::vector<AudioStreamType> sounds;
  std::string microphone;  ///< Empty: it is left alone.
  std::string music;       ///< Empty: a few built-in songs.
  std::string record;      ///< Empty: what the car tells is not kept.
  PictureSize size;
  int fps = 30;
  std::int64_t frames = 0;
  bool loop = false;
  bool fast = false;
  std::string stats;  ///< Empty: none wanted.
  bool verbose = false;

  /// The files that are written, by the options that name them.
  std::vector<programs::NamedFile> outputs() const;
};

/// Reads the command line. Empty if the program is to end at once, with `status`: after --help, or after a
/// reason on stderr.
std::optional<Options> readOptions(int argc, char** argv, int* status);

}  // namespace phone

#endif
