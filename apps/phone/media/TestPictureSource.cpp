#include "phone/media/TestPictureSource.h"

#include <mutex>
#include <utility>

#include "phone/media/H264Encoder.h"

namespace phone {
namespace {

class EncodedTestPicture final : public TestPictureSource {
 public:
  EncodedTestPicture(const VideoOptions& options, std::unique_ptr<H264Encoder> encoder, FramePtr frame)
      : options_(options),
        encoder_(std::move(encoder)),
        frame_(std::move(frame)),
        painter_(options.width, options.height) {}

  std::vector<std::uint8_t> codecConfig() override { return encoder_->codecConfig(); }
  int width() const override { return options_.width; }
  int height() const override { return options_.height; }
  std::int64_t nextDueUs() const override { return drawn_ * 1'000'000 / options_.fps; }
  std::uint32_t shownTouchSequence() const override { return shownTouchSequence_; }

  bool next(AccessUnit* unit) override {
    if (failed_ || (options_.frames > 0 && drawn_ == options_.frames)) return false;
    failed_ = av_frame_make_writable(frame_.get()) < 0 || !drawAndEncode(unit);
    if (!failed_) ++drawn_;
    return !failed_;
  }

  std::uint32_t setTouches(std::vector<TouchMark> touches) override {
    const std::lock_guard lock(mutex_);
    touches_ = std::move(touches);
    return ++touchSequence_;
  }

 private:
  bool drawAndEncode(AccessUnit* unit) {
    TestFrame picture;
    picture.counter = static_cast<std::uint32_t>(drawn_);
    picture.timeUs = nextDueUs();
    {
      const std::lock_guard lock(mutex_);
      picture.touchSequence = touchSequence_;
      picture.touches = touches_;
    }
    AVFrame& frame = *frame_;
    painter_.draw(picture, {frame.width,
                            frame.height,
                            {frame.data[0], frame.data[1], frame.data[2]},
                            {frame.linesize[0], frame.linesize[1], frame.linesize[2]}});
    shownTouchSequence_ = picture.touchSequence;
    return encoder_->encode(&frame, unit);
  }

  const VideoOptions options_;
  std::unique_ptr<H264Encoder> encoder_;
  FramePtr frame_;
  TestPicturePainter painter_;
  std::int64_t drawn_ = 0;
  std::uint32_t shownTouchSequence_ = 0;
  bool failed_ = false;

  std::mutex mutex_;  // guards the two members below
  std::vector<TouchMark> touches_;
  std::uint32_t touchSequence_ = 0;
};

}  // namespace

std::unique_ptr<TestPictureSource> makeTestPictureSource(const VideoOptions& options, std::string* error) {
  std::unique_ptr<H264Encoder> encoder = H264Encoder::create(options, error);
  if (!encoder) return nullptr;
  FramePtr frame = makeYuvFrame(options.width, options.height);
  if (!frame) {
    *error = "There is no memory for a picture of " + std::to_string(options.width) + "x" +
             std::to_string(options.height) + ".";
    return nullptr;
  }
  return std::make_unique<EncodedTestPicture>(options, std::move(encoder), std::move(frame));
}

std::unique_ptr<VideoSource> makeTestPicture(const VideoOptions& options, std::string* error) {
  return makeTestPictureSource(options, error);
}

}  // namespace phone
