#include "phone/media/Png.h"

#include "phone/media/Ffmpeg.h"
#include "phone/media/MediaDecoder.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace phone {
namespace {

CodecPtr openPngEncoder(int width, int height) {
  const AVCodec* encoder = avcodec_find_encoder(AV_CODEC_ID_PNG);
  if (encoder == nullptr) return nullptr;
  CodecPtr codec(avcodec_alloc_context3(encoder));
  codec->width = width;
  codec->height = height;
  codec->pix_fmt = AV_PIX_FMT_RGB24;
  codec->time_base = {1, 25};
  return avcodec_open2(codec.get(), encoder, nullptr) >= 0 ? std::move(codec) : nullptr;
}

FramePtr wrapRgb(const std::uint8_t* rgb, int width, int height) {
  FramePtr frame(av_frame_alloc());
  frame->format = AV_PIX_FMT_RGB24;
  frame->width = width;
  frame->height = height;
  if (av_frame_get_buffer(frame.get(), 0) < 0) return nullptr;
  const std::uint8_t* const planes[4] = {rgb};
  const int strides[4] = {3 * width};
  av_image_copy(frame->data, frame->linesize, const_cast<const std::uint8_t**>(planes), strides,
                AV_PIX_FMT_RGB24, width, height);
  return frame;
}

}  // namespace

std::vector<std::uint8_t> encodePng(const std::uint8_t* rgb, int width, int height) {
  quietFfmpeg();
  if (width <= 0 || height <= 0) return {};
  const CodecPtr codec = openPngEncoder(width, height);
  const FramePtr frame = codec ? wrapRgb(rgb, width, height) : nullptr;
  if (!frame) return {};
  const PacketPtr packet(av_packet_alloc());
  if (avcodec_send_frame(codec.get(), frame.get()) < 0) return {};
  if (avcodec_receive_packet(codec.get(), packet.get()) < 0) return {};
  return {packet->data, packet->data + packet->size};
}

std::optional<RgbPicture> readPicture(const std::string& path, std::string* error) {
  const std::unique_ptr<MediaDecoder> decoder = MediaDecoder::open(path, AVMEDIA_TYPE_VIDEO, error);
  if (!decoder) return {};
  const AVFrame* frame = decoder->next();
  const ScalerPtr scaler(
      sws_getContext(frame->width, frame->height, static_cast<AVPixelFormat>(frame->format), frame->width,
                     frame->height, AV_PIX_FMT_RGB24, SWS_POINT, nullptr, nullptr, nullptr));
  RgbPicture picture{frame->width, frame->height, {}};
  picture.rgb.resize(static_cast<std::size_t>(picture.stride()) * static_cast<std::size_t>(picture.height));
  std::uint8_t* const planes[4] = {picture.rgb.data()};
  const int strides[4] = {picture.stride()};
  if (!scaler || sws_scale(scaler.get(), frame->data, frame->linesize, 0, frame->height, planes, strides) !=
                     frame->height) {
    *error = "The picture '" + path + "' is in a pixel format that cannot be converted.";
    return {};
  }
  return picture;
}

}  // namespace phone
