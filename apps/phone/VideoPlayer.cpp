#include "phone/VideoPlayer.h"

#include <utility>

namespace phone {

namespace {

class VideoFeed : public MediaFeed {
 public:
  explicit VideoFeed(std::unique_ptr<VideoSource> source) : source_(std::move(source)) {}

  Bytes codecConfig() override { return source_->codecConfig(); }

  Pull next(MediaUnit* unit) override {
    AccessUnit picture;
    if (!source_->next(&picture)) return Pull::end;
    *unit = {std::move(picture.data), picture.timestampUs, picture.dueUs};
    return Pull::unit;
  }

 private:
  std::unique_ptr<VideoSource> source_;
};

}  // namespace

MediaStream::Opener videoOpener(const MediaSinkService& sink, VideoWish wish, VideoFactory make) {
  return [sink, wish, make = std::move(make)](const std::vector<std::uint32_t>& allowed, std::uint32_t* index,
                                              LinkEnd* problem) -> std::unique_ptr<MediaFeed> {
    const std::optional<std::uint32_t> chosen = chooseVideo(sink, allowed, wish.size, wish.fps);
    if (!chosen) {
      *problem = {false, Side::headUnit, "its Config allows none of the video configurations that it offers",
                  "it must allow at least one"};
      return nullptr;
    }
    *index = *chosen;
    std::string error;
    const VideoConfiguration& configuration = sink.video_configs(static_cast<int>(*chosen));
    auto source = make(sizeOf(configuration.codec_resolution()), &error);
    if (source) return std::make_unique<VideoFeed>(std::move(source));
    *problem = {false, Side::phone, error, "choose another --video or --size"};
    return nullptr;
  };
}

}  // namespace phone
