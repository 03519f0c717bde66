#include "headunit/media/ImageDecoder.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/mem.h>
#include <libswscale/swscale.h>
}

namespace headunit {
namespace {

constexpr std::int64_t MOST_PIXELS = 16'000'000;
constexpr int LONGEST_SIDE = 512;

struct Free {
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
  void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
template <class T>
using Owned = std::unique_ptr<T, Free>;

AVCodecID codecOf(const std::string& bytes) {
  if (bytes.compare(0, 8, "\x89PNG\r\n\x1a\n", 8) == 0) return AV_CODEC_ID_PNG;
  if (bytes.compare(0, 3, "\xff\xd8\xff", 3) == 0) return AV_CODEC_ID_MJPEG;
  return AV_CODEC_ID_NONE;
}

Owned<AVFrame> decodeWith(const AVCodec* codec, const std::string& bytes) {
  const Owned<AVCodecContext> context(avcodec_alloc_context3(codec));
  const Owned<AVPacket> packet(av_packet_alloc());
  Owned<AVFrame> frame(av_frame_alloc());
  if (!context || !packet || !frame) return nullptr;
  context->max_pixels = MOST_PIXELS;
  context->thread_count = 1;
  if (avcodec_open2(context.get(), codec, nullptr) < 0) return nullptr;
  if (av_new_packet(packet.get(), static_cast<int>(bytes.size())) < 0) return nullptr;
  std::memcpy(packet->data, bytes.data(), bytes.size());
  if (avcodec_send_packet(context.get(), packet.get()) < 0) return nullptr;
  avcodec_send_packet(context.get(), nullptr);
  if (avcodec_receive_frame(context.get(), frame.get()) < 0) return nullptr;
  return frame;
}

std::uint32_t multiplied(std::uint32_t pixel) {
  const std::uint32_t alpha = pixel >> 24;
  const auto part = [pixel, alpha](int shift) {
    return ((pixel >> shift & 0xff) * alpha + 127) / 255 << shift;
  };
  return alpha << 24 | part(16) | part(8) | part(0);
}

Size sizeFor(const AVFrame& frame) {
  const int longest = std::max(frame.width, frame.height);
  if (longest <= LONGEST_SIDE) return {frame.width, frame.height};
  return {std::max(frame.width * LONGEST_SIDE / longest, 1),
          std::max(frame.height * LONGEST_SIDE / longest, 1)};
}

// The scaler may write beyond the end of a row, for which only libavutil's own buffers leave room.
Owned<AVFrame> scaled(const AVFrame& frame, Size size) {
  Owned<AVFrame> target(av_frame_alloc());
  if (!target) return nullptr;
  target->format = AV_PIX_FMT_RGB32;
  target->width = size.width;
  target->height = size.height;
  const Owned<SwsContext> scaler(sws_getContext(
      frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), size.width, size.height,
      AV_PIX_FMT_RGB32, SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr));
  if (!scaler || av_frame_get_buffer(target.get(), 0) < 0) return nullptr;
  sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, target->data, target->linesize);
  return target;
}

Image bitmapOf(const AVFrame& frame) {
  const Owned<AVFrame> pixels = scaled(frame, sizeFor(frame));
  if (!pixels) return nullptr;
  auto bitmap = std::make_shared<Bitmap>();
  bitmap->size = {pixels->width, pixels->height};
  const auto width = static_cast<std::size_t>(pixels->width);
  bitmap->pixels.resize(width * static_cast<std::size_t>(pixels->height));
  std::uint32_t* to = bitmap->pixels.data();
  for (int y = 0; y < pixels->height; ++y, to += width) {
    std::memcpy(to, pixels->data[0] + y * pixels->linesize[0], width * sizeof *to);
    std::transform(to, to + width, to, multiplied);
  }
  return bitmap;
}

}  // namespace

Image decodeImage(const std::string& bytes) {
  const AVCodec* const codec = avcodec_find_decoder(codecOf(bytes));
  if (codec == nullptr || bytes.size() > std::numeric_limits<int>::max() / 2) return nullptr;
  const Owned<AVFrame> frame = decodeWith(codec, bytes);
  return frame ? bitmapOf(*frame) : nullptr;
}

}  // namespace headunit
