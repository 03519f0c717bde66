#include "headunit/media/ImageDecoder.h"

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

Image bitmapOf(const AVFrame& frame) {
  auto bitmap = std::make_shared<Bitmap>();
  bitmap->size = {frame.width, frame.height};
  bitmap->pixels.resize(static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(frame.height));
  const Owned<SwsContext> scaler(sws_getContext(
      frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), frame.width, frame.height,
      AV_PIX_FMT_RGB32, SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr));
  if (!scaler) return nullptr;
  std::uint8_t* const target[] = {reinterpret_cast<std::uint8_t*>(bitmap->pixels.data())};
  const int stride[] = {frame.width * static_cast<int>(sizeof(std::uint32_t))};
  sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, target, stride);
  for (std::uint32_t& pixel : bitmap->pixels) pixel = multiplied(pixel);
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
