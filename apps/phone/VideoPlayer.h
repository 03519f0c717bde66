#ifndef PHONE_VIDEOPLAYER_H
#define PHONE_VIDEOPLAYER_H

#include <functional>
#include <memory>
#include <string>

#include "phone/Discovery.h"
#include "phone/MediaStream.h"
#include "phone/TouchScreen.h"
#include "phone/media/VideoSource.h"

namespace phone {

struct VideoWish {
  PictureSize size;
  int fps = 30;
};

/// Makes the picture's source once its size is settled. Null on failure, with a sentence in `error`.
using VideoFactory = std::function<std::unique_ptr<VideoSource>(PictureSize size, std::string* error)>;

/// Who else is concerned with the picture.
struct VideoCompany {
  TouchScreen* touches = nullptr;           ///< Shown by a source that can show touches.
  std::function<void(Micros time)> onSent;  ///< The picture of that time of the stream has been sent.
};

/// What a MediaStream to the video sink `sink` needs: chooses the configuration by `wish` and `make`s its
/// source. What `company` points to outlives the stream.
MediaStream::Opener videoOpener(const MediaSinkService& sink, VideoWish wish, VideoFactory make,
                                VideoCompany company = {});

}  // namespace phone

#endif
