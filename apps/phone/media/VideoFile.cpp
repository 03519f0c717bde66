#include <memory>
#include <string>
#include <utility>

#include "phone/media/PassthroughVideo.h"
#include "phone/media/TranscodedVideo.h"
#include "phone/media/VideoSource.h"

namespace phone {

std::unique_ptr<VideoSource> openVideoFile(const std::string& path, const VideoOptions& options,
                                           std::string* error) {
  std::unique_ptr<Demuxer> demuxer = Demuxer::open(path, AVMEDIA_TYPE_VIDEO, error);
  if (!demuxer) return nullptr;
  if (demuxer->stream().codecpar->codec_id == AV_CODEC_ID_H264) {
    return PassthroughVideo::open(path, std::move(demuxer), options, error);
  }
  return TranscodedVideo::open(path, std::move(demuxer), options, error);
}

}  // namespace phone
