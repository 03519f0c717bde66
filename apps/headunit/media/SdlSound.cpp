#include "headunit/media/SdlSound.h"

#include <SDL.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "common/InputFile.h"

namespace headunit {
namespace {

// 10 ms, and whole milliseconds: SDL's dummy device waits no fractions, and would run ahead of the phone.
constexpr Uint16 DEVICE_FRAMES = MIX_RATE / 100;

// Twelve minutes as a compact disc has them, or an hour of speech.
constexpr programs::InputLimits FILE_LIMITS{128 << 20};
constexpr std::size_t LONGEST_RECORDING = std::size_t{3600} * MICROPHONE_RATE;
constexpr int LOWEST_RATE = 1000;
constexpr int HIGHEST_RATE = 768'000;

SDL_AudioSpec formatOf(unsigned int rate, unsigned int channels, unsigned int frames) {
  SDL_AudioSpec format{};
  format.freq = static_cast<int>(rate);
  format.format = AUDIO_S16SYS;
  format.channels = static_cast<Uint8>(channels);
  format.samples = static_cast<Uint16>(frames);
  return format;
}

bool startAudio(std::string* error) {
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  if (SDL_InitSubSystem(SDL_INIT_AUDIO) == 0) return true;
  *error = SDL_GetError();
  return false;
}

/// The device asks for sound when it needs it; one that has gone is never heard of again.
class SdlOutput : public SoundOutput {
 public:
  explicit SdlOutput(Mixer* mixer) : mixer_(mixer) {}
  ~SdlOutput() override {
    if (device_ != 0) SDL_CloseAudioDevice(device_);
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
  }

  bool open(std::string* error) {
    SDL_AudioSpec format = formatOf(MIX_RATE, MIX_CHANNELS, DEVICE_FRAMES);
    format.callback = play;
    format.userdata = mixer_;
    device_ = SDL_OpenAudioDevice(nullptr, 0, &format, nullptr, 0);
    if (device_ == 0) *error = SDL_GetError();
    if (device_ != 0) SDL_PauseAudioDevice(device_, 0);
    return device_ != 0;
  }

  void finish(milliseconds limit) override {
    waitForQuiet(*mixer_, limit);
    SDL_PauseAudioDevice(device_, 1);
  }

 private:
  static void play(void* mixer, Uint8* out, int length) {
    static_cast<Mixer*>(mixer)->mix(reinterpret_cast<std::int16_t*>(out),
                                    static_cast<std::size_t>(length) / 4);
  }

  Mixer* const mixer_;
  SDL_AudioDeviceID device_ = 0;
};

/// Opening and closing a device take their time, so a thread of its own does both: the link must not stand
/// still meanwhile. Whether opening works is known only afterwards. If it did not, the phone hears of it with
/// its next request, which makes the thread try anew for the one after it.
class SdlMicrophone : public Microphone {
 public:
  SdlMicrophone()
      : listening_([this] {
          run();
          SDL_TLSCleanup();  // SDL keeps a text of its last error for each thread
        }) {}
  ~SdlMicrophone() override {
    change([this] {
      take_ = nullptr;
      ending_ = true;
    });
    listening_.join();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
  }

  bool open(Take take) override {
    bool listens = false;
    change([&] {
      listens = !failed_;
      triesAnew_ = failed_;
      if (listens) take_ = std::move(take);
    });
    return listens;
  }

  void close() override {
    change([this] { take_ = nullptr; });
  }

 private:
  template <class Change>
  void change(const Change& make) {
    {
      const std::lock_guard lock(mutex_);
      make();
    }
    changed_.notify_all();
  }

  void run() {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [this] { return ending_ || triesAnew_ || take_; });
      if (ending_) return;
      triesAnew_ = false;
      lock.unlock();
      const SDL_AudioDeviceID device = openDevice();
      lock.lock();
      failed_ = device == 0;
      if (failed_) take_ = nullptr;
      changed_.wait(lock, [this] { return take_ == nullptr; });
      lock.unlock();
      if (device != 0) SDL_CloseAudioDevice(device);
      lock.lock();
    }
  }

  SDL_AudioDeviceID openDevice() {
    SDL_AudioSpec format = formatOf(MICROPHONE_RATE, 1, MICROPHONE_BLOCK);
    format.callback = hear;
    format.userdata = this;
    const SDL_AudioDeviceID device = SDL_OpenAudioDevice(nullptr, 1, &format, nullptr, 0);
    if (device == 0) spdlog::warn("The microphone cannot be opened: {}.", SDL_GetError());
    if (device != 0) SDL_PauseAudioDevice(device, 0);
    return device;
  }

  // Sound that cannot be sent now is lost: it would only come late.
  static void hear(void* self, Uint8* samples, int length) {
    auto* const microphone = static_cast<SdlMicrophone*>(self);
    if (length != static_cast<int>(2 * MICROPHONE_BLOCK)) return;
    const std::lock_guard lock(microphone->mutex_);
    if (microphone->take_) microphone->take_(reinterpret_cast<const std::int16_t*>(samples));
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  Take take_;               // null while closed
  bool failed_ = false;     // the device could not be opened when it was last tried
  bool triesAnew_ = false;  // though nobody listens
  bool ending_ = false;
  std::thread listening_;  // last: it uses all of the above
};

/// What a WAVE file holds.
struct Recording {
  struct Free {
    void operator()(Uint8* wave) const { SDL_FreeWAV(wave); }
  };

  std::size_t frameSize() const { return SDL_AUDIO_BITSIZE(format.format) / 8U * format.channels; }
  /// How many samples the microphone makes of it.
  std::size_t samples() const {
    return length / frameSize() * MICROPHONE_RATE / static_cast<std::size_t>(format.freq);
  }

  SDL_AudioSpec format{};
  std::unique_ptr<Uint8, Free> bytes;
  Uint32 length = 0;
};

std::optional<Recording> parseWav(const std::string& file, std::string* error) {
  if (file.empty()) {
    *error = "it is empty";
    return {};
  }
  Recording recording;
  Uint8* bytes = nullptr;
  SDL_RWops* const source = SDL_RWFromConstMem(file.data(), static_cast<int>(file.size()));
  const bool isRead =
      source != nullptr && SDL_LoadWAV_RW(source, 1, &recording.format, &bytes, &recording.length) != nullptr;
  recording.bytes.reset(bytes);
  if (!isRead) {
    *error = "it cannot be read as a WAVE file (" + std::string(SDL_GetError()) + ")";
  } else if (recording.format.freq < LOWEST_RATE || recording.format.freq > HIGHEST_RATE) {
    *error = "its rate is none of sound";
  } else if (recording.length < recording.frameSize()) {
    *error = "it holds no sound";
  } else if (recording.samples() > LONGEST_RECORDING) {
    *error = "it is longer than an hour";
  } else {
    return recording;
  }
  return {};
}

std::optional<std::vector<std::int16_t>> forMicrophone(const Recording& recording, std::string* error) {
  const SDL_AudioSpec& format = recording.format;
  const std::unique_ptr<SDL_AudioStream, void (*)(SDL_AudioStream*)> stream(
      SDL_NewAudioStream(format.format, format.channels, format.freq, AUDIO_S16SYS, 1,
                         static_cast<int>(MICROPHONE_RATE)),
      SDL_FreeAudioStream);
  // The stream keeps some of what it was given to itself: silence after the end, which is cut off again.
  const std::vector<Uint8> silence(recording.frameSize() * (static_cast<std::size_t>(format.freq) / 10 + 1),
                                   format.silence);
  if (!stream ||
      SDL_AudioStreamPut(stream.get(), recording.bytes.get(), static_cast<int>(recording.length)) != 0 ||
      SDL_AudioStreamPut(stream.get(), silence.data(), static_cast<int>(silence.size())) != 0 ||
      SDL_AudioStreamFlush(stream.get()) != 0) {
    *error = SDL_GetError();
    return {};
  }
  const auto available =
      static_cast<std::size_t>(SDL_AudioStreamAvailable(stream.get())) / sizeof(std::int16_t);
  std::vector<std::int16_t> samples(std::min(available, recording.samples()));
  SDL_AudioStreamGet(stream.get(), samples.data(), static_cast<int>(samples.size() * sizeof(std::int16_t)));
  return samples;
}

}  // namespace

std::unique_ptr<SoundOutput> openSoundDevice(Mixer* mixer, std::string* error) {
  if (!startAudio(error)) return nullptr;
  auto output = std::make_unique<SdlOutput>(mixer);
  if (!output->open(error)) return nullptr;
  return output;
}

std::unique_ptr<Microphone> findMicrophone(std::string* error) {
  if (!startAudio(error)) return nullptr;
  auto microphone = std::make_unique<SdlMicrophone>();
  if (SDL_GetNumAudioDevices(1) != 0) return microphone;
  *error = "there is no device to record with";
  return nullptr;
}

std::optional<std::vector<std::int16_t>> readForMicrophone(const std::string& path, std::string* error) {
  const std::optional<std::string> file = programs::readInput(path, FILE_LIMITS, error);
  std::optional<Recording> recording;
  if (file) recording = parseWav(*file, error);
  std::optional<std::vector<std::int16_t>> samples;
  if (recording) samples = forMicrophone(*recording, error);
  if (!samples) *error = path + ": " + *error;
  return samples;
}

}  // namespace headunit
