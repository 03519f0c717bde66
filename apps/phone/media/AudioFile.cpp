#include <algorithm>
#include <cstddef>
#include <utility>

#include "phone/media/MediaDecoder.h"
#include "phone/media/PcmClock.h"
#include "phone/media/PcmSource.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

namespace phone {
namespace {

constexpr std::size_t SAMPLE_BYTES = 2;

/// Brings decoded sound of any kind to one sample rate and number of channels, 16 bits a sample.
class Resampler {
 public:
  Resampler(int sampleRate, int channels) : sampleRate_(sampleRate), channels_(channels) {}

  /// Appends what `frame` gives to `*pcm`; what is still held back if `frame` is null. False if such sound
  /// cannot be converted.
  bool convert(const AVFrame* frame, std::vector<std::uint8_t>* pcm) {
    if (frame != nullptr && !accepts(*frame) && !configure(*frame)) return false;
    if (!resampler_) return true;
    const int input = frame != nullptr ? frame->nb_samples : 0;
    const int room = swr_get_out_samples(resampler_.get(), input);
    if (room < 0) return false;
    const std::size_t before = pcm->size();
    pcm->resize(before + bytes(room));
    std::uint8_t* out = pcm->data() + before;
    const auto in = frame != nullptr ? const_cast<const std::uint8_t**>(frame->extended_data) : nullptr;
    const int got = swr_convert(resampler_.get(), &out, room, in, input);
    pcm->resize(before + bytes(std::max(got, 0)));
    return got >= 0;
  }

 private:
  std::size_t bytes(int samples) const {
    return static_cast<std::size_t>(samples) * static_cast<std::size_t>(channels_) * SAMPLE_BYTES;
  }

  bool accepts(const AVFrame& frame) const {
    return resampler_ && frame.sample_rate == inputRate_ && frame.format == inputFormat_ &&
           frame.ch_layout.nb_channels == inputChannels_;
  }

  bool configure(const AVFrame& frame) {
    AVChannelLayout from{};
    if (frame.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC) {
      av_channel_layout_default(&from, frame.ch_layout.nb_channels);
    } else {
      av_channel_layout_copy(&from, &frame.ch_layout);
    }
    AVChannelLayout to{};
    av_channel_layout_default(&to, channels_);
    SwrContext* raw = nullptr;
    const int result =
        swr_alloc_set_opts2(&raw, &to, AV_SAMPLE_FMT_S16, sampleRate_, &from,
                            static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
    resampler_.reset(raw);
    av_channel_layout_uninit(&from);
    inputRate_ = frame.sample_rate;
    inputFormat_ = frame.format;
    inputChannels_ = frame.ch_layout.nb_channels;
    return result >= 0 && swr_init(raw) >= 0;
  }

  int sampleRate_;
  int channels_;
  int inputRate_ = 0;
  int inputFormat_ = -1;
  int inputChannels_ = 0;
  ResamplerPtr resampler_;
};

class AudioFile final : public PcmSource {
 public:
  AudioFile(std::string path, std::unique_ptr<MediaDecoder> decoder, int sampleRate, int channels, bool loop)
      : path_(std::move(path)),
        decoder_(std::move(decoder)),
        resampler_(sampleRate, channels),
        clock_(sampleRate),
        sampleRate_(sampleRate),
        channels_(channels),
        loop_(loop) {}

  int sampleRate() const override { return sampleRate_; }
  int channels() const override { return channels_; }
  std::string problem() const override { return problem_; }

  bool next(int milliseconds, PcmBlock* block) override {
    const auto frames = static_cast<std::size_t>(clock_.startBlock(std::max(milliseconds, 1)));
    const std::size_t wanted = frames * static_cast<std::size_t>(channels_) * SAMPLE_BYTES;
    while (ready_.size() < wanted && refill()) {
    }
    if (ready_.empty()) return false;
    const auto end = ready_.begin() + static_cast<std::ptrdiff_t>(std::min(wanted, ready_.size()));
    block->data.assign(ready_.begin(), end);
    block->timestampUs = clock_.blockStartUs();
    ready_.erase(ready_.begin(), end);
    return true;
  }

  /// Decodes until there is something to hear; false if there never is.
  bool start() {
    while (ready_.empty() && refill()) {
    }
    return !ready_.empty();
  }

 private:
  // False once the file is at its end, or broken beyond use.
  bool refill() {
    if (decoder_ == nullptr) return false;
    const AVFrame* frame = decoder_->next();
    const std::size_t before = ready_.size();
    const bool converted = resampler_.convert(frame, &ready_);
    passIsHeard_ = passIsHeard_ || ready_.size() > before;
    if (converted && frame != nullptr) return true;
    if (frame == nullptr) problem_ = breakOff(path_, decoder_->problem());
    decoder_.reset();
    if (!problem_.empty()) return false;
    // A file too short to give a single sample would be read again and again for ever.
    if (!converted || !loop_ || !passIsHeard_) return false;
    passIsHeard_ = false;
    decoder_ = MediaDecoder::open(path_, AVMEDIA_TYPE_AUDIO, &problem_);
    resampler_ = Resampler(sampleRate_, channels_);
    return decoder_ != nullptr;
  }

  std::string path_;
  std::unique_ptr<MediaDecoder> decoder_;
  Resampler resampler_;
  PcmClock clock_;
  int sampleRate_;
  int channels_;
  bool loop_;
  bool passIsHeard_ = false;  // this pass through the file has given sound
  std::vector<std::uint8_t> ready_;
  std::string problem_;
};

}  // namespace

std::unique_ptr<PcmSource> openAudioFile(const std::string& path, int sampleRate, int channels, bool loop,
                                         std::string* error) {
  if (sampleRate < 8000 || sampleRate > 192000 || channels < 1 || channels > 8) {
    *error = "Sound of " + std::to_string(sampleRate) + " Hz with " + std::to_string(channels) +
             " channels is not supported: 8000 to 192000 Hz and 1 to 8 channels are.";
    return nullptr;
  }
  std::unique_ptr<MediaDecoder> decoder = MediaDecoder::open(path, AVMEDIA_TYPE_AUDIO, error);
  if (!decoder) return nullptr;
  auto file = std::make_unique<AudioFile>(path, std::move(decoder), sampleRate, channels, loop);
  if (!file->start()) {
    *error = "The sound of '" + path + "' cannot be converted to " + std::to_string(sampleRate) + " Hz.";
    return nullptr;
  }
  return file;
}

}  // namespace phone
