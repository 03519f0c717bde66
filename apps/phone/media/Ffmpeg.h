#pragma once

#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

namespace phone {

/// FFmpeg's objects, owned.
struct FfmpegFree {
  void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVBSFContext* context) const { av_bsf_free(&context); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
  void operator()(SwsContext* context) const { sws_freeContext(context); }
  void operator()(SwrContext* context) const { swr_free(&context); }
};

using FormatPtr = std::unique_ptr<AVFormatContext, FfmpegFree>;
using CodecPtr = std::unique_ptr<AVCodecContext, FfmpegFree>;
using FilterPtr = std::unique_ptr<AVBSFContext, FfmpegFree>;
using FramePtr = std::unique_ptr<AVFrame, FfmpegFree>;
using PacketPtr = std::unique_ptr<AVPacket, FfmpegFree>;
using ScalerPtr = std::unique_ptr<SwsContext, FfmpegFree>;
using ResamplerPtr = std::unique_ptr<SwrContext, FfmpegFree>;

/// FFmpeg's words for one of its error numbers.
std::string ffmpegError(int number);

/// What the user is told of a file that could be read no further because of `problem`; empty without one.
std::string breakOff(const std::string& path, const std::string& problem);

/// What the user is told of pictures that are not turned by `degrees` clockwise, though the file wants it,
/// because of `reason`.
std::string notTurned(const std::string& path, int degrees, const std::string& reason);

/// A YUV 4:2:0 frame with its own buffers; null if there is no memory for it.
FramePtr makeYuvFrame(int width, int height);

/// Keeps FFmpeg from writing to the terminal on its own; what fails is told by our sentences.
void quietFfmpeg();

}  // namespace phone
