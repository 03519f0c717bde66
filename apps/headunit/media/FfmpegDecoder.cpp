#include "headunit/media/FfmpegDecoder.h"

#include <spdlog/spdlog.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <thread>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
}

namespace headunit {
namespace {

using Buffer = ::shared_ptr<IoBuffer>;

// Well beyond the largest size offered. Some bytes of a stream can ask for gigabytes of pictures.
constexpr std::int64_t MOST_PIXELS = 4096 * 2304;

void release(void* buffer, std::uint8_t*) { delete static_cast<Buffer*>(buffer); }

// The packet shares the buffer that the frame came in, for as long as libavcodec needs it. Returns false if
// there is no memory for that.
bool wrap(VideoFrame frame, std::int64_t ticket, AVPacket* packet) {
  padWithZeros(&frame, AV_INPUT_BUFFER_PADDING_SIZE);
  auto shared = std::make_unique<Buffer>(frame.buffer);
  packet->buf =
      av_buffer_create(frame.data(), frame.length + AV_INPUT_BUFFER_PADDING_SIZE, release, shared.get(), 0);
  if (packet->buf == nullptr) return false;
  shared.release();  // the packet's now
  packet->data = frame.data();
  packet->size = static_cast<int>(frame.length);
  packet->pts = ticket;
  return true;
}

std::string wordsFor(int error) {
  char text[AV_ERROR_MAX_STRING_SIZE] = "";
  av_strerror(error, text, sizeof text);
  return text;
}

int sliceThreads() { return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 4); }

void logLine(void*, int level, const char* format, va_list arguments) {
  if (level > AV_LOG_WARNING) return;
  char line[512];
  std::vsnprintf(line, sizeof line, format, arguments);
  line[std::strcspn(line, "\n")] = '\0';
  spdlog::debug("libavcodec: {}", line);
}

}  // namespace

void quietenFfmpeg() { av_log_set_callback(logLine); }

void FfmpegDecoder::Free::operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
void FfmpegDecoder::Free::operator()(AVFrame* frame) const { av_frame_free(&frame); }
void FfmpegDecoder::Free::operator()(AVPacket* packet) const { av_packet_free(&packet); }
void FfmpegDecoder::Free::operator()(SwsContext* scaler) const { sws_freeContext(scaler); }

FfmpegDecoder::FfmpegDecoder() = default;
FfmpegDecoder::~FfmpegDecoder() = default;

void FfmpegDecoder::configure(const CodecConfig& config) {
  if (context_ && config.bytes == configuration_) return;
  configuration_ = config.bytes;
  context_.reset();
}

void FfmpegDecoder::open() {
  const AVCodec* const codec = avcodec_find_decoder(AV_CODEC_ID_H264);
  if (!packet_) packet_.reset(av_packet_alloc());
  context_.reset(packet_ ? avcodec_alloc_context3(codec) : nullptr);
  if (!context_) return;
  context_->max_pixels = MOST_PIXELS;
  context_->flags |= AV_CODEC_FLAG_LOW_DELAY;
  context_->thread_type = FF_THREAD_SLICE;  // threads by frame would hold back a picture for each of them
  context_->thread_count = sliceThreads();
  if (!configuration_.empty()) {
    context_->extradata =
        static_cast<std::uint8_t*>(av_mallocz(configuration_.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    if (context_->extradata == nullptr) return context_.reset();
    std::memcpy(context_->extradata, configuration_.data(), configuration_.size());
    context_->extradata_size = static_cast<int>(configuration_.size());
  }
  if (const int status = avcodec_open2(context_.get(), codec, nullptr); status < 0) {
    spdlog::warn("The phone's codec configuration is damaged: {}.", wordsFor(status));
    context_.reset();
  }
}

std::string FfmpegDecoder::decode(VideoFrame frame, const OnPicture& onPicture) {
  if (frame.length == 0) return "an empty frame";
  if (!context_) open();
  if (!context_) return "no decoder for it";
  times_[static_cast<std::size_t>(++ticket_) % REMEMBERED] = frame.times;
  if (!wrap(std::move(frame), ticket_, packet_.get())) return "no memory for it";
  const int status = avcodec_send_packet(context_.get(), packet_.get());
  av_packet_unref(packet_.get());
  const std::vector<std::string> faults = takePictures(onPicture);
  if (status < 0) return wordsFor(status);
  return faults.empty() ? "" : faults.back();
}

std::vector<std::string> FfmpegDecoder::finish(const OnPicture& onPicture) {
  if (!context_) return {};
  avcodec_send_packet(context_.get(), nullptr);
  std::vector<std::string> faults = takePictures(onPicture);
  avcodec_flush_buffers(context_.get());
  return faults;
}

std::vector<std::string> FfmpegDecoder::takePictures(const OnPicture& onPicture) {
  std::vector<std::string> faults;
  const auto endingWith = [&faults](std::string last) {
    faults.push_back(std::move(last));
    return std::move(faults);
  };
  for (;;) {
    Owned<AVFrame> frame(av_frame_alloc());
    if (!frame) return endingWith("no memory for its picture");
    const int status = avcodec_receive_frame(context_.get(), frame.get());
    if (status == AVERROR(EAGAIN) || status == AVERROR_EOF) return faults;
    if (status < 0) return endingWith(wordsFor(status));
    if (frame->decode_error_flags != 0) faults.emplace_back("parts of a picture are missing");
    const FrameTimes times = times_[static_cast<std::size_t>(frame->pts) % REMEMBERED];
    frame = inPlanes(std::move(frame));
    if (!frame) return endingWith("no memory for its picture");
    onPicture(pictureOf(std::move(frame), times));
  }
}

Picture FfmpegDecoder::pictureOf(Owned<AVFrame> frame, const FrameTimes& times) {
  Picture picture;
  picture.times = times;
  picture.times.decoded = Clock::now();
  picture.width = frame->width;
  picture.height = frame->height;
  for (std::size_t i = 0; i < picture.planes.size(); ++i)
    picture.planes[i] = {frame->data[i], frame->linesize[i]};
  picture.fullRange = frame->color_range == AVCOL_RANGE_JPEG || frame->format == AV_PIX_FMT_YUVJ420P;
  picture.bt709 = frame->colorspace == AVCOL_SPC_BT709;
  picture.pixels = std::shared_ptr<AVFrame>(frame.release(), Free());
  return picture;
}

// Nearly every stream comes in this format already; the others are converted. Null if that cannot be done.
FfmpegDecoder::Owned<AVFrame> FfmpegDecoder::inPlanes(Owned<AVFrame> frame) {
  if (frame->format == AV_PIX_FMT_YUV420P || frame->format == AV_PIX_FMT_YUVJ420P) return frame;
  Owned<AVFrame> converted(av_frame_alloc());
  if (!converted) return nullptr;
  converted->format = AV_PIX_FMT_YUV420P;
  converted->width = frame->width;
  converted->height = frame->height;
  converted->colorspace = frame->colorspace;
  if (av_frame_get_buffer(converted.get(), 0) < 0) return nullptr;
  scaler_.reset(sws_getCachedContext(scaler_.release(), frame->width, frame->height,
                                     static_cast<AVPixelFormat>(frame->format), frame->width, frame->height,
                                     AV_PIX_FMT_YUV420P, SWS_BILINEAR, nullptr, nullptr, nullptr));
  if (!scaler_) return nullptr;
  sws_scale(scaler_.get(), frame->data, frame->linesize, 0, frame->height, converted->data,
            converted->linesize);
  return converted;
}

}  // namespace headunit
