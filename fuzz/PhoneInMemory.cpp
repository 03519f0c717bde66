#include "PhoneInMemory.h"

#include <algorithm>

namespace {

constexpr std::size_t PIECE = 61;
constexpr phone::Micros MILLISECOND = 1000;

volatile std::size_t sink;  // what was read goes here, so that reading it is not left out

class TwoPictures : public phone::VideoSource {
 public:
  std::vector<std::uint8_t> codecConfig() override { return {0, 0, 0, 1, 0x67}; }
  bool next(phone::AccessUnit* unit) override {
    unit->data = {0, 0, 0, 1, 0x65};
    return given_++ < 2;
  }
  int width() const override { return 800; }
  int height() const override { return 480; }

 private:
  int given_ = 0;
};

class Silence : public phone::PcmSource {
 public:
  Silence(int sampleRate, int channels) : sampleRate_(sampleRate), channels_(channels) {}
  int sampleRate() const override { return sampleRate_; }
  int channels() const override { return channels_; }
  bool next(int, phone::PcmBlock* block) override {
    block->data = {0, 0, 0, 0};
    return given_++ < 2;
  }

 private:
  int sampleRate_;
  int channels_;
  int given_ = 0;
};

phone::CarOptions carOptions(phone::CarListener* listener) {
  phone::CarOptions options;
  options.listener = listener;
  options.recordMicrophone = [](int, int, std::string*) -> phone::PcmSink {
    return [](const std::uint8_t* samples, std::size_t length) {
      for (std::size_t i = 0; i < length; ++i) sink = sink + samples[i];
      return true;
    };
  };
  return options;
}

std::unique_ptr<phone::PcmSource> silence(AudioStreamType, int sampleRate, int channels, std::string*) {
  return std::make_unique<Silence>(sampleRate, channels);
}

}  // namespace

PhoneInMemory::PhoneInMemory()
    : car_(&link_, &timers_, carOptions(this)), sounds_(&link_, &timers_, &clock_, true) {
  link_.observe(this);
}

PhoneInMemory::~PhoneInMemory() { link_.finish({}); }

void PhoneInMemory::feed(const unsigned char* data, std::size_t size) {
  while (size > 0) {
    const std::size_t piece = std::min(PIECE, size);
    link_.feed(data, piece);
    timers_.advance(time_ += MILLISECOND);
    data += piece;
    size -= piece;
  }
}

void PhoneInMemory::onMessage(const phone::Message&) {
  if (!opened_ && link_.services() != nullptr) openEverything();
}

void PhoneInMemory::openEverything() {
  opened_ = true;
  const ServiceDiscoveryResponse& services = *link_.services();
  phone::StreamOptions options;
  options.clock = &clock_;
  if (const Service* screen = phone::findVideoSink(services)) {
    const auto make = [](phone::PictureSize, std::string*) { return std::make_unique<TwoPictures>(); };
    video_ = std::make_unique<phone::MediaStream>(
        &link_, &timers_, options,
        phone::videoOpener(screen->media_sink_service(), phone::VideoWish(), make));
    video_->start(link_.unusedChannel(), screen->id());
  }
  sounds_.start(services, {AUDIO_STREAM_MEDIA, AUDIO_STREAM_GUIDANCE}, silence);
  car_.open(services);
}

void PhoneInMemory::onSensorBatch(const SensorBatch& batch) { sink = sink + batch.ByteSizeLong(); }

void PhoneInMemory::onInputReport(const InputReport& report) { sink = sink + report.ByteSizeLong(); }
