#include "phone/media/PassthroughVideo.h"

#include <algorithm>

#include "phone/media/NalUnits.h"

namespace phone {
PassthroughVideo::PassthroughVideo(const std::string& path, std::unique_ptr<Demuxer> demuxer,
                                   const VideoOptions& options)
    : path_(path),
      options_(options),
      demuxer_(std::move(demuxer)),
      packet_(av_packet_alloc()),
      clock_(demuxer_->frameRate(options.fps), demuxer_->mayJump()),
      width_(demuxer_->stream().codecpar->width),
      height_(demuxer_->stream().codecpar->height) {}

std::unique_ptr<PassthroughVideo> PassthroughVideo::open(const std::string& path,
                                                         std::unique_ptr<Demuxer> demuxer,
                                                         const VideoOptions& options, std::string* error) {
  std::unique_ptr<PassthroughVideo> video(new PassthroughVideo(path, std::move(demuxer), options));
  if (!video->startFilter(error)) return nullptr;
  if (!video->readFromKeyframe()) {
    *error = "The file '" + path + "' holds H.264 without a key frame to start from.";
    return nullptr;
  }
  video->pending_ = true;
  video->findConfig();
  if (video->config_.empty()) {
    *error = "The file '" + path + "' holds H.264 without the parameter sets that a decoder needs.";
    return nullptr;
  }
  return video;
}

bool PassthroughVideo::startFilter(std::string* error) {
  AVBSFContext* raw = nullptr;
  int result = av_bsf_alloc(av_bsf_get_by_name("h264_mp4toannexb"), &raw);
  filter_.reset(raw);
  if (result >= 0) result = avcodec_parameters_copy(raw->par_in, demuxer_->stream().codecpar);
  if (result >= 0) {
    raw->time_base_in = demuxer_->stream().time_base;
    result = av_bsf_init(raw);
  }
  if (result < 0) *error = "The H.264 stream of '" + path_ + "' cannot be read: " + ffmpegError(result) + ".";
  return result >= 0;
}

void PassthroughVideo::findConfig() {
  const AVCodecParameters& parameters = *filter_->par_out;
  config_ = parameterSets(parameters.extradata, static_cast<std::size_t>(parameters.extradata_size));
  if (config_.empty()) config_ = parameterSets(packet_->data, static_cast<std::size_t>(packet_->size));
}

bool PassthroughVideo::readPacket() {
  av_packet_unref(packet_.get());
  while (true) {
    const int result = av_bsf_receive_packet(filter_.get(), packet_.get());
    if (result >= 0) return true;
    if (result == AVERROR_EOF) return false;
    // Anything but a call for more input means that one packet was damaged: the next may be whole.
    const bool more = demuxer_->next(packet_.get());
    if (av_bsf_send_packet(filter_.get(), more ? packet_.get() : nullptr) < 0) {
      if (!more) return false;
      av_packet_unref(packet_.get());
    }
  }
}

bool PassthroughVideo::readFromKeyframe() {
  while (readPacket()) {
    if (!atStart_ || (packet_->flags & AV_PKT_FLAG_KEY) != 0) {
      atStart_ = false;
      return true;
    }
  }
  return false;
}

bool PassthroughVideo::restart() {
  problem_ = breakOff(path_, demuxer_->problem());
  if (!problem_.empty() || !options_.loop) return false;
  // Opening the file anew is exact for every container, seeking to the start is not.
  std::unique_ptr<Demuxer> again = Demuxer::open(path_, AVMEDIA_TYPE_VIDEO, &problem_);
  if (!again || again->stream().codecpar->codec_id != AV_CODEC_ID_H264) return false;
  demuxer_ = std::move(again);
  if (!startFilter(&problem_)) return false;
  clock_.startAgain();
  atStart_ = true;
  return readFromKeyframe();
}

std::string PassthroughVideo::remark() const {
  const int degrees = demuxer_->turn();
  return degrees == 0 ? "" : notTurned(path_, degrees, "H.264 is handed on as it is");
}

void PassthroughVideo::stamp(AccessUnit* unit) {
  const AVRational base = filter_->time_base_out;
  unit->dueUs = clock_.stamp(packet_->dts, packet_->duration, base);
  unit->timestampUs = unit->dueUs;
  if (packet_->pts == AV_NOPTS_VALUE) return;
  unit->timestampUs = std::max(unit->dueUs, clock_.convert(packet_->pts, base));
}

bool PassthroughVideo::next(AccessUnit* unit) {
  if (ended_ || (options_.frames > 0 && returned_ == options_.frames)) return false;
  const bool ready = pending_ || readFromKeyframe() || restart();
  pending_ = false;
  if (!ready) {
    ended_ = true;
    return false;
  }
  stamp(unit);
  unit->data.assign(packet_->data, packet_->data + packet_->size);
  unit->keyframe = (packet_->flags & AV_PKT_FLAG_KEY) != 0;
  ++returned_;
  return true;
}

}  // namespace phone
