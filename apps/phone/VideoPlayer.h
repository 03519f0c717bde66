#ifndef PHONE_VIDEOPLAYER_H
#define PHONE_VIDEOPLAYER_H

#include <functional>
#include <memory>
#include <string>

#include "phone/Discovery.h"
#include "phone/MediaStream.h"
#include "phone/media/VideoSource.h"

namespace phone {

struct VideoWish {
  PictureSize size;
  int fps = 30;
};

/// Makes the picture's source once its size is settled. Null on failure, with a sentence in `error`.
using VideoFactory = std::function<std::unique_ptr<VideoSource>(PictureSize size, std::string* error)>;

/// What a MediaStream to the video sink `sink` needs: chooses the configuration by `wish` and `make`s its source.
MediaStream::Opener videoOpener(const MediaSinkService& sink, VideoWish wish, VideoFactory make);

}  // namespace phone

#endif
