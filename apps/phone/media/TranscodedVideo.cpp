#include "phone/media/TranscodedVideo.h"

#include <utility>

namespace phone {
namespace {

int quarterTurns(const Demuxer& demuxer) { return demuxer.turn() % 90 == 0 ? demuxer.turn() / 90 : 0; }

}  // namespace

TranscodedVideo::TranscodedVideo(const std::string& path, std::unique_ptr<MediaDecoder> decoder,
                                 std::unique_ptr<H264Encoder> encoder, const VideoOptions& options)
    : path_(path),
      options_(options),
      decoder_(std::move(decoder)),
      encoder_(std::move(encoder)),
      fitter_(options.width, options.height, quarterTurns(decoder_->demuxer())),
      clock_(decoder_->demuxer().frameRate(options.fps), decoder_->demuxer().mayJump()),
      current_(av_frame_alloc()),
      ahead_(av_frame_alloc()) {}

std::unique_ptr<TranscodedVideo> TranscodedVideo::open(const std::string& path,
                                                       std::unique_ptr<Demuxer> demuxer,
                                                       const VideoOptions& options, std::string* error) {
  std::unique_ptr<H264Encoder> encoder = H264Encoder::create(options, error);
  if (!encoder) return nullptr;
  std::unique_ptr<MediaDecoder> decoder = MediaDecoder::start(path, std::move(demuxer), error);
  if (!decoder) return nullptr;
  std::unique_ptr<TranscodedVideo> video(
      new TranscodedVideo(path, std::move(decoder), std::move(encoder), options));
  video->hasAhead_ = video->readAhead();
  if (video->fitter_.fit(*video->ahead_, {0, 1}) == nullptr) {
    *error = "The pictures of '" + path + "' are in a pixel format that cannot be converted.";
    return nullptr;
  }
  return video;
}

std::string TranscodedVideo::remark() const {
  const int degrees = decoder_->demuxer().turn();
  return degrees % 90 == 0 ? "" : notTurned(path_, degrees, "only quarters of a turn are done");
}

bool TranscodedVideo::restart() {
  problem_ = breakOff(path_, decoder_->problem());
  if (!problem_.empty() || !options_.loop) return false;
  // Opening the file anew is exact for every container, seeking to the start is not.
  std::unique_ptr<MediaDecoder> again = MediaDecoder::open(path_, AVMEDIA_TYPE_VIDEO, &problem_);
  if (!again) return false;
  decoder_ = std::move(again);
  clock_.startAgain();
  return true;
}

bool TranscodedVideo::readAhead() {
  AVFrame* frame = decoder_->next();
  if (frame == nullptr && restart()) frame = decoder_->next();
  if (frame == nullptr) return false;
  av_frame_unref(ahead_.get());
  av_frame_move_ref(ahead_.get(), frame);
  aheadUs_ = clock_.stamp(ahead_->best_effort_timestamp, ahead_->pkt_duration,
                          decoder_->demuxer().stream().time_base);
  return true;
}

bool TranscodedVideo::isOver(std::int64_t untilUs) const {
  const bool limited = options_.frames > 0 && returned_ == options_.frames;
  const bool shownLongEnough = returned_ > 0 && untilUs >= clock_.endUs();
  return limited || shownLongEnough;
}

bool TranscodedVideo::next(AccessUnit* unit) {
  // A picture belongs to the output frame that is nearest to its time.
  const std::int64_t untilUs = (2 * returned_ + 1) * 500'000 / options_.fps;
  bool changed = false;
  while (hasAhead_ && aheadUs_ <= untilUs) {
    std::swap(current_, ahead_);
    hasAhead_ = readAhead();
    changed = true;
  }
  if (ended_ || isOver(untilUs)) {
    ended_ = true;
    return false;
  }
  AVFrame* fitted =
      changed ? fitter_.fit(*current_, decoder_->demuxer().stream().sample_aspect_ratio) : nullptr;
  if (fitted != nullptr) fitted_ = fitted;
  ended_ = fitted_ == nullptr || !encoder_->encode(fitted_, unit);
  if (!ended_) ++returned_;
  return !ended_;
}

}  // namespace phone
