#include "phone/media/MediaDecoder.h"

#include <utility>

namespace phone {
namespace {

// A damaged packet gives one failure, or a few; a decoder that fails on and on without asking for more input
// is broken for good.
constexpr int MOST_FAILURES = 100;
constexpr int LARGE_PICTURE = 1000 * 1000;  // in pixels, from which one core is not enough at 30 a second

CodecPtr openDecoder(const std::string& path, const AVStream& stream, std::string* error) {
  const AVCodec* decoder = avcodec_find_decoder(stream.codecpar->codec_id);
  if (decoder == nullptr) {
    *error = "The file '" + path + "' is in a format (" + avcodec_get_name(stream.codecpar->codec_id) +
             ") that this machine's FFmpeg does not decode.";
    return nullptr;
  }
  CodecPtr codec(avcodec_alloc_context3(decoder));
  int result = avcodec_parameters_to_context(codec.get(), stream.codecpar);
  codec->pkt_timebase = stream.time_base;
  // The encoder that follows needs the other core; only large pictures need both in turn.
  codec->thread_count =
      std::int64_t{stream.codecpar->width} * stream.codecpar->height >= LARGE_PICTURE ? 2 : 1;
  if (result >= 0) result = avcodec_open2(codec.get(), decoder, nullptr);
  if (result < 0) {
    const bool nonsense = result == AVERROR(EINVAL) || result == AVERROR_INVALIDDATA;
    *error = "The file '" + path + "' cannot be decoded: " +
             (nonsense ? "what it tells of its format makes no sense" : ffmpegError(result)) + ".";
    return nullptr;
  }
  return codec;
}

}  // namespace

MediaDecoder::MediaDecoder(std::unique_ptr<Demuxer> demuxer, CodecPtr codec)
    : demuxer_(std::move(demuxer)),
      codec_(std::move(codec)),
      packet_(av_packet_alloc()),
      frame_(av_frame_alloc()) {}

std::unique_ptr<MediaDecoder> MediaDecoder::open(const std::string& path, AVMediaType kind,
                                                 std::string* error) {
  std::unique_ptr<Demuxer> demuxer = Demuxer::open(path, kind, error);
  return demuxer ? start(path, std::move(demuxer), error) : nullptr;
}

std::unique_ptr<MediaDecoder> MediaDecoder::start(const std::string& path, std::unique_ptr<Demuxer> demuxer,
                                                  std::string* error) {
  CodecPtr codec = openDecoder(path, demuxer->stream(), error);
  if (!codec) return nullptr;
  std::unique_ptr<MediaDecoder> decoder(new MediaDecoder(std::move(demuxer), std::move(codec)));
  decoder->pending_ = decoder->decode();
  if (!decoder->pending_) {
    *error = "Nothing in the file '" + path + "' can be decoded.";
    return nullptr;
  }
  return decoder;
}

void MediaDecoder::feed() {
  const bool more = demuxer_->next(packet_.get());
  // A damaged packet is refused here; the decoder then simply asks for the next one.
  avcodec_send_packet(codec_.get(), more ? packet_.get() : nullptr);
  av_packet_unref(packet_.get());
}

bool MediaDecoder::decode() {
  for (int failures = 0; failures < MOST_FAILURES;) {
    const int result = avcodec_receive_frame(codec_.get(), frame_.get());
    if (result >= 0) return true;
    if (result == AVERROR_EOF) return false;
    if (result == AVERROR(EAGAIN)) {
      feed();
      failures = 0;
    } else {
      ++failures;
    }
  }
  isStuck_ = true;
  return false;
}

std::string MediaDecoder::problem() const {
  return isStuck_ ? "it cannot be decoded any further" : demuxer_->problem();
}

AVFrame* MediaDecoder::next() {
  if (!pending_ && !decode()) return nullptr;
  pending_ = false;
  return frame_.get();
}

}  // namespace phone
