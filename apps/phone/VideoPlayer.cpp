#include "phone/VideoPlayer.h"

#include <utility>

namespace phone {

namespace {

class VideoFeed : public MediaFeed {
 public:
  VideoFeed(std::unique_ptr<VideoSource> source, VideoCompany company)
      : source_(std::move(source)),
        company_(std::move(company)),
        live_(company_.touches != nullptr ? dynamic_cast<TestPictureSource*>(source_.get()) : nullptr) {
    if (live_ != nullptr) company_.touches->setPicture(live_);
  }
  ~VideoFeed() override {
    if (live_ != nullptr) company_.touches->setPicture(nullptr);
  }
  VideoFeed(const VideoFeed&) = delete;
  VideoFeed& operator=(const VideoFeed&) = delete;

  Bytes codecConfig() override { return source_->codecConfig(); }

  Pull next(MediaUnit* unit) override {
    AccessUnit picture;
    if (!source_->next(&picture)) return Pull::end;
    *unit = {std::move(picture.data), picture.timestampUs, picture.dueUs};
    return Pull::unit;
  }

  std::string problem() const override { return source_->problem(); }

  std::optional<Micros> nextDue() const override {
    return live_ != nullptr ? std::optional<Micros>(live_->nextDueUs()) : std::nullopt;
  }

  void onSent(const MediaUnit& unit) override {
    if (live_ != nullptr) company_.touches->onPictureSent(live_->shownTouchSequence());
    if (company_.onSent) company_.onSent(unit.due);
  }

 private:
  std::unique_ptr<VideoSource> source_;
  VideoCompany company_;
  TestPictureSource* live_;
};

}  // namespace

MediaStream::Opener videoOpener(const MediaSinkService& sink, VideoWish wish, VideoFactory make,
                                VideoCompany company) {
  return [sink, wish, make = std::move(make), company = std::move(company)](
             const std::vector<std::uint32_t>& allowed, std::uint32_t* index,
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
    if (source) return std::make_unique<VideoFeed>(std::move(source), company);
    *problem = {false, Side::phone, error, "choose another --video or --size"};
    return nullptr;
  };
}

}  // namespace phone
