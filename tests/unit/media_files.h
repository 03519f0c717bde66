#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "phone/media/Ffmpeg.h"
#include "phone/media/TestPicture.h"
#include "phone/media/VideoSource.h"

extern "C" {
#include <libavutil/display.h>
#include <libavutil/opt.h>
}

/// Media files and pictures for the tests of the simulator's media side, made on the spot with FFmpeg itself.
namespace test::media {

inline void require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

/// A folder that is gone when the test is over.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "media-XXXXXX").string();
    require(::mkdtemp(name.data()) != nullptr, "no temporary folder");
    path_ = name;
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  std::string path() const { return path_.string(); }

 private:
  std::filesystem::path path_;
};

inline void writeFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

inline phone::YuvView viewOf(const AVFrame& frame) {
  return {frame.width,
          frame.height,
          {frame.data[0], frame.data[1], frame.data[2]},
          {frame.linesize[0], frame.linesize[1], frame.linesize[2]}};
}

/// A media file that is being written: streams first, then `begin`, then frames, then `finish`.
class FileMaker {
 public:
  explicit FileMaker(const std::string& path) {
    phone::quietFfmpeg();
    AVFormatContext* raw = nullptr;
    require(avformat_alloc_output_context2(&raw, nullptr, nullptr, path.c_str()) >= 0, "no such container");
    output_ = raw;
    require(avio_open(&output_->pb, path.c_str(), AVIO_FLAG_WRITE) >= 0, "file not writable");
  }
  ~FileMaker() {
    avio_closep(&output_->pb);
    avformat_free_context(output_);
  }
  FileMaker(const FileMaker&) = delete;
  FileMaker& operator=(const FileMaker&) = delete;

  using Settings = std::map<std::string, std::string>;

  /// Adds a stream of what `codec`, set up by `prepare`, encodes.
  void addStream(const char* codec, const Settings& settings,
                 const std::function<void(AVCodecContext*)>& prepare) {
    const AVCodec* encoder = avcodec_find_encoder_by_name(codec);
    require(encoder != nullptr, "no such encoder");
    encoder_.reset(avcodec_alloc_context3(encoder));
    prepare(encoder_.get());
    if ((output_->oformat->flags & AVFMT_GLOBALHEADER) != 0) encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    for (const auto& [name, value] : settings)
      av_opt_set(encoder_->priv_data, name.c_str(), value.c_str(), 0);
    require(avcodec_open2(encoder_.get(), encoder, nullptr) >= 0, "the encoder does not start");
    stream_ = avformat_new_stream(output_, nullptr);
    avcodec_parameters_from_context(stream_->codecpar, encoder_.get());
    stream_->time_base = encoder_->time_base;
  }

  /// Adds a cover picture, or with `moving` a video of that one picture; to be called after `addStream`.
  void addCover(const std::vector<std::uint8_t>& png, bool moving) {
    cover_ = png;
    AVStream* stream = avformat_new_stream(output_, nullptr);
    stream->codecpar->codec_type = AVMEDIA_TYPE_VIDEO;
    stream->codecpar->codec_id = AV_CODEC_ID_PNG;
    stream->codecpar->width = stream->codecpar->height = 256;
    stream->disposition = moving ? 0 : AV_DISPOSITION_ATTACHED_PIC;
  }

  void tag(const char* name, const char* value) { av_dict_set(&output_->metadata, name, value, 0); }

  /// Wants the pictures turned before they are shown; to be called after `addStream`.
  void turn(int degreesClockwise) {
    auto* matrix = reinterpret_cast<std::int32_t*>(
        av_stream_new_side_data(stream_, AV_PKT_DATA_DISPLAYMATRIX, 9 * sizeof(std::int32_t)));
    require(matrix != nullptr, "no memory");
    av_display_rotation_set(matrix, degreesClockwise);
  }

  void begin(const Settings& container = {}) {
    for (const auto& [name, value] : container)
      av_opt_set(output_->priv_data, name.c_str(), value.c_str(), 0);
    require(avformat_write_header(output_, nullptr) >= 0, "no header");
    if (cover_.empty()) return;
    const phone::PacketPtr packet(av_packet_alloc());
    av_new_packet(packet.get(), static_cast<int>(cover_.size()));
    std::copy(cover_.begin(), cover_.end(), packet->data);
    packet->stream_index = 1;
    require(av_write_frame(output_, packet.get()) >= 0, "no cover");
  }

  void add(AVFrame* frame) {
    require(avcodec_send_frame(encoder_.get(), frame) >= 0, "not encoded");
    const phone::PacketPtr packet(av_packet_alloc());
    while (avcodec_receive_packet(encoder_.get(), packet.get()) >= 0) {
      packet->duration = encoder_->codec_type == AVMEDIA_TYPE_VIDEO ? 1 : packet->duration;
      av_packet_rescale_ts(packet.get(), encoder_->time_base, stream_->time_base);
      packet->stream_index = stream_->index;
      require(av_interleaved_write_frame(output_, packet.get()) >= 0, "not written");
    }
  }

  void finish() {
    add(nullptr);
    require(av_write_trailer(output_) >= 0, "no trailer");
  }

  const AVCodecContext& encoder() const { return *encoder_; }

 private:
  AVFormatContext* output_ = nullptr;
  phone::CodecPtr encoder_;
  AVStream* stream_ = nullptr;
  std::vector<std::uint8_t> cover_;
};

struct VideoRecipe {
  const char* codec = "libx264";
  FileMaker::Settings settings;
  FileMaker::Settings container;
  int turn = 0;  // clockwise, in degrees
  int width = 320;
  int height = 192;
  int fps = 30;
  int frames = 12;
  int keyframeEvery = 6;
  int bFrames = 0;
  AVPixelFormat format = AV_PIX_FMT_YUV420P;
};

/// Writes `samples` (interleaved, 16 bits) in the format of `codec`, with tags and a cover if they are given.
struct SoundRecipe {
  const char* codec = "pcm_s16le";
  int sampleRate = 48000;
  int channels = 2;
  FileMaker::Settings tags;
  std::vector<std::uint8_t> cover;
  bool coverMoves = false;
};

inline void writeSound(const std::string& path, const SoundRecipe& recipe,
                       const std::vector<std::int16_t>& samples) {
  FileMaker file(path);
  file.addStream(recipe.codec, {}, [&](AVCodecContext* codec) {
    codec->sample_rate = recipe.sampleRate;
    codec->sample_fmt = AV_SAMPLE_FMT_S16;
    codec->time_base = {1, recipe.sampleRate};
    av_channel_layout_default(&codec->ch_layout, recipe.channels);
  });
  if (!recipe.cover.empty()) file.addCover(recipe.cover, recipe.coverMoves);
  for (const auto& [name, value] : recipe.tags) file.tag(name.c_str(), value.c_str());
  file.begin();
  const std::size_t chunk =
      file.encoder().frame_size > 0 ? static_cast<std::size_t>(file.encoder().frame_size) : 1024;
  const auto channels = static_cast<std::size_t>(recipe.channels);
  for (std::size_t at = 0; at < samples.size() / channels; at += chunk) {
    const std::size_t count = std::min(chunk, samples.size() / channels - at);
    const phone::FramePtr frame(av_frame_alloc());
    frame->nb_samples = static_cast<int>(count);
    frame->format = AV_SAMPLE_FMT_S16;
    frame->sample_rate = recipe.sampleRate;
    frame->pts = static_cast<std::int64_t>(at);
    av_channel_layout_default(&frame->ch_layout, recipe.channels);
    require(av_frame_get_buffer(frame.get(), 0) >= 0, "no memory");
    std::memcpy(frame->data[0], samples.data() + at * channels, count * channels * 2);
    file.add(frame.get());
  }
  file.finish();
}

using Draw = std::function<void(int number, AVFrame* frame)>;

/// Writes a video whose pictures `draw` fills in.
inline void writeVideo(const std::string& path, const VideoRecipe& recipe, const Draw& draw) {
  FileMaker file(path);
  file.addStream(recipe.codec, recipe.settings, [&](AVCodecContext* codec) {
    codec->width = recipe.width;
    codec->height = recipe.height;
    codec->pix_fmt = recipe.format;
    codec->time_base = {1, recipe.fps};
    codec->framerate = {recipe.fps, 1};
    codec->gop_size = recipe.keyframeEvery;
    codec->max_b_frames = recipe.bFrames;
    codec->thread_count = 1;
    codec->flags |= AV_CODEC_FLAG_QSCALE;
    codec->global_quality = 2 * FF_QP2LAMBDA;
  });
  if (recipe.turn != 0) file.turn(recipe.turn);
  file.begin(recipe.container);
  for (int i = 0; i < recipe.frames; ++i) {
    const phone::FramePtr frame = phone::makeYuvFrame(recipe.width, recipe.height);
    frame->format = recipe.format;
    frame->pts = i;
    frame->quality = file.encoder().global_quality;
    draw(i, frame.get());
    file.add(frame.get());
  }
  file.finish();
}

/// Writes a video of the test picture, whose counter tells the frame's number.
inline void writeNumberedVideo(const std::string& path, const VideoRecipe& recipe) {
  const phone::TestPicturePainter painter(recipe.width, recipe.height);
  writeVideo(path, recipe, [&](int number, AVFrame* frame) {
    phone::TestFrame picture;
    picture.counter = static_cast<std::uint32_t>(number);
    picture.timeUs = number * 1'000'000LL / recipe.fps;
    painter.draw(picture, viewOf(*frame));
  });
}

/// Everything that a source gives, up to `most` access units.
inline std::vector<phone::AccessUnit> drain(phone::VideoSource* source, std::size_t most = 1000) {
  std::vector<phone::AccessUnit> units;
  phone::AccessUnit unit;
  while (units.size() < most && source->next(&unit)) units.push_back(unit);
  return units;
}

/// A decoder as a head unit has one: codec config first, then whole access units.
class Viewer {
 public:
  explicit Viewer(std::vector<std::uint8_t> config) : config_(std::move(config)) {
    const AVCodec* decoder = avcodec_find_decoder(AV_CODEC_ID_H264);
    codec_.reset(avcodec_alloc_context3(decoder));
    codec_->flags |= AV_CODEC_FLAG_LOW_DELAY;
    codec_->thread_count = 1;
    require(avcodec_open2(codec_.get(), decoder, nullptr) >= 0, "no H.264 decoder");
  }

  /// The picture that the decoder gives for an access unit, null if it gives none for this one.
  const AVFrame* show(const phone::AccessUnit& unit) {
    std::vector<std::uint8_t> bytes = config_;
    config_.clear();
    bytes.insert(bytes.end(), unit.data.begin(), unit.data.end());
    const phone::PacketPtr packet(av_packet_alloc());
    av_new_packet(packet.get(), static_cast<int>(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), packet->data);
    require(avcodec_send_packet(codec_.get(), packet.get()) >= 0, "not decodable");
    return avcodec_receive_frame(codec_.get(), frame_.get()) >= 0 ? frame_.get() : nullptr;
  }

  std::optional<std::uint32_t> counterOf(const phone::AccessUnit& unit) {
    const AVFrame* frame = show(unit);
    if (frame == nullptr) return {};
    return phone::readCounter(frame->data[0], frame->width, frame->height, frame->linesize[0]);
  }

 private:
  std::vector<std::uint8_t> config_;
  phone::CodecPtr codec_;
  phone::FramePtr frame_{av_frame_alloc()};
};

/// `frame` scaled to another size.
inline phone::FramePtr scaled(const AVFrame& frame, int width, int height) {
  phone::FramePtr result = phone::makeYuvFrame(width, height);
  const phone::ScalerPtr scaler(sws_getContext(frame.width, frame.height, AV_PIX_FMT_YUV420P, width, height,
                                               AV_PIX_FMT_YUV420P, SWS_BICUBIC, nullptr, nullptr, nullptr));
  sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, result->data, result->linesize);
  return result;
}

}  // namespace test::media
