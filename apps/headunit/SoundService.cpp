#include "headunit/SoundService.h"

#include <spdlog/spdlog.h>

namespace headunit {
namespace {

// A third of a second in blocks of 20 ms: more than a phone sends ahead of its time.
constexpr int MAX_UNACKED_BLOCKS = 16;
constexpr unsigned int BITS = 16;

/// Hands the phone's sound over to the mix, as it is.
class SoundCallbacks : public IAudioSinkCallbacks {
 public:
  explicit SoundCallbacks(std::shared_ptr<AudioStream> stream) : stream_(std::move(stream)) {}

  void dataAvailable(int sessionId, unsigned long long, ::shared_ptr<IoBuffer> const& buffer, void* data,
                     unsigned int length) override {
    stream_->receive({buffer, static_cast<const unsigned char*>(data), length, sessionId, Clock::now()});
  }
  void codecConfig(void*, unsigned int) override {}
  // Only plain samples: codec 1 stands for them here.
  int setup(int mediaCodecType) override {
    return mediaCodecType == MEDIA_CODEC_1 ? 0 : STATUS_INVALID_CONFIGURATION;
  }
  void playbackStart(int sessionId) override {
    spdlog::debug("The {} sound starts, session {}.", stream_->name(), sessionId);
    stream_->start();
  }
  void playbackStop(int sessionId) override {
    spdlog::debug("The {} sound stops, session {}.", stream_->name(), sessionId);
    stream_->stop();
  }

 private:
  const std::shared_ptr<AudioStream> stream_;
};

}  // namespace

SoundService::SoundService(int serviceId, AudioStreamType type, AudioFormat format, const std::string& name,
                           MessageRouter* router, Mixer* mixer)
    : stream_(std::make_shared<AudioStream>(
          name, format, MAX_UNACKED_BLOCKS,
          [this](int session, unsigned int count) { sink_->ackFrames(session, count); })) {
  sink_ = std::make_unique<AudioSink>(serviceId, router,
                                      ::shared_ptr<IAudioSinkCallbacks>(new SoundCallbacks(stream_)));
  sink_->setStreamType(type);
  sink_->setMaxUnacked(MAX_UNACKED_BLOCKS);
  const bool stereo = format == AudioFormat::stereo48k;
  sink_->addSupportedConfiguration(stereo ? MIX_RATE : MIX_RATE / Upsampler::FACTOR, BITS, stereo ? 2 : 1);
  mixer->add(stream_);
}

}  // namespace headunit
