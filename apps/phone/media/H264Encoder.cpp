#include "phone/media/H264Encoder.h"

#include <utility>

#include "phone/media/NalUnits.h"

extern "C" {
#include <libavutil/opt.h>
}

namespace phone {
namespace {

constexpr int KEYFRAME_SECONDS = 2;
constexpr int LARGE_PICTURE = 1000 * 1000;  // in pixels, from which one core is not enough at 30 a second

bool checkOptions(const VideoOptions& options, std::string* error) {
  const bool even = options.width % 2 == 0 && options.height % 2 == 0;
  const bool sane =
      options.width >= 160 && options.width <= 4096 && options.height >= 120 && options.height <= 4096;
  if (!even || !sane) {
    *error = "A picture of " + std::to_string(options.width) + "x" + std::to_string(options.height) +
             " cannot be encoded: both numbers must be even, from 160x120 to 4096x4096.";
    return false;
  }
  if (options.fps < 1 || options.fps > 120) {
    *error = "A rate of " + std::to_string(options.fps) + " frames a second is not between 1 and 120.";
    return false;
  }
  return true;
}

void configure(AVCodecContext* codec, const VideoOptions& options) {
  codec->width = options.width;
  codec->height = options.height;
  codec->pix_fmt = AV_PIX_FMT_YUV420P;
  codec->color_range = AVCOL_RANGE_MPEG;
  codec->time_base = {1, options.fps};
  codec->framerate = {options.fps, 1};
  codec->gop_size = KEYFRAME_SECONDS * options.fps;
  codec->max_b_frames = 0;
  codec->thread_count = options.width * options.height >= LARGE_PICTURE ? 2 : 1;
  codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
  // Options that libx264 does not know would fail at avcodec_open2, so the results need no look here.
  av_opt_set(codec->priv_data, "preset", "ultrafast", 0);
  av_opt_set(codec->priv_data, "tune", "zerolatency", 0);
  av_opt_set(codec->priv_data, "profile", "baseline", 0);
  av_opt_set(codec->priv_data, "crf", "22", 0);
  av_opt_set(codec->priv_data, "x264-params", "scenecut=0", 0);
}

}  // namespace

H264Encoder::H264Encoder(CodecPtr codec, int fps)
    : codec_(std::move(codec)), packet_(av_packet_alloc()), fps_(fps) {
  config_ = parameterSets(codec_->extradata, static_cast<std::size_t>(codec_->extradata_size));
}

std::unique_ptr<H264Encoder> H264Encoder::create(const VideoOptions& options, std::string* error) {
  quietFfmpeg();
  if (!checkOptions(options, error)) return nullptr;
  const AVCodec* encoder = avcodec_find_encoder_by_name("libx264");
  if (encoder == nullptr) {
    *error = "This machine's FFmpeg has no H.264 encoder (libx264).";
    return nullptr;
  }
  CodecPtr codec(avcodec_alloc_context3(encoder));
  configure(codec.get(), options);
  const int result = avcodec_open2(codec.get(), encoder, nullptr);
  if (result < 0) {
    *error = "The H.264 encoder does not start: " + ffmpegError(result) + ".";
    return nullptr;
  }
  return std::unique_ptr<H264Encoder>(new H264Encoder(std::move(codec), options.fps));
}

bool H264Encoder::encode(AVFrame* frame, AccessUnit* unit) {
  frame->pts = count_;
  frame->pict_type = AV_PICTURE_TYPE_NONE;
  frame->key_frame = 0;
  if (avcodec_send_frame(codec_.get(), frame) < 0) return false;
  if (avcodec_receive_packet(codec_.get(), packet_.get()) < 0) return false;
  unit->data.assign(packet_->data, packet_->data + packet_->size);
  unit->keyframe = (packet_->flags & AV_PKT_FLAG_KEY) != 0;
  unit->timestampUs = count_ * 1'000'000 / fps_;
  unit->dueUs = unit->timestampUs;
  av_packet_unref(packet_.get());
  ++count_;
  return true;
}

}  // namespace phone
