#include "headunit/program/Car.h"

#include <spdlog/spdlog.h>

#include <cstdlib>

#include "headunit/media/FfmpegDecoder.h"
#include "headunit/media/ImageDecoder.h"
#include "headunit/media/KeyMap.h"
#include "headunit/media/Results.h"
#include "headunit/media/SdlSound.h"
#include "headunit/program/HostLog.h"

namespace headunit {
namespace {

constexpr milliseconds PLAYING_OUT(1000);

}  // namespace

bool Car::equip(std::string* error) {
  if (!Results::canBeWritten({options_.stats, options_.snapshot}, error)) return false;
  const std::optional<Credentials> credentials = loadCredentials(options_.credentials, error);
  if (!credentials) {
    *error = "The credentials cannot be used: " + *error;
    return false;
  }
  if (const std::string doubts = doubtsAbout(*credentials); !doubts.empty()) {
    spdlog::warn("The phone may refuse this head unit: {}.", doubts);
  }
  if (!loadDriveData(error) || !openSoundFile(error) || !openMicrophoneFile(error)) return false;
  equipment_.credentials = *credentials;
  equipment_.makeDecoder = [] { return std::make_unique<FfmpegDecoder>(); };
  equipment_.slot = &slot_;
  equipment_.budget = &budget_;
  equipment_.margins = options_.margins;
  equipment_.mixer = &mixer_;
  equipment_.controls = &controls_;
  equipment_.keyCodes = allKeyCodes();
  equipment_.drive = &drive_;
  equipment_.touches = options_.touches;
  equipment_.libraryLines = &libraryLines();
  equipment_.cluster = &cluster_;
  equipment_.clusterKeys = &clusterKeys_;
  equipment_.slowWork = &slowWork_;
  equipment_.decodeImage = decodeImage;
  equipment_.pairedPhones = &pairedPhones_;
  equipment_.autoPair = options_.autoPair;
  equipment_.opensBrowser = options_.browse;
  return true;
}

bool Car::loadDriveData(std::string* error) {
  std::optional<DriveScript> drive =
      options_.drive.empty() ? parseDrive(builtInDrive(), error) : loadDrive(options_.drive, error);
  if (!drive) {
    *error = "The drive cannot be used: " + *error;
    return false;
  }
  drive_ = std::move(*drive);
  return true;
}

// A machine without a display seldom has a sound device, and looking for one fills its terminal with
// complaints.
bool Car::usesDevices() const { return !options_.headless || std::getenv("SDL_AUDIODRIVER") != nullptr; }

bool Car::openSoundFile(std::string* error) {
  if (options_.audioOut.empty()) return true;
  std::unique_ptr<WavWriter> file = WavWriter::create(options_.audioOut, MIX_RATE, MIX_CHANNELS, error);
  if (!file) {
    *error += "; choose another file with --audio-out";
    return false;
  }
  sound_ = std::make_unique<ClockedOutput>(&mixer_, std::move(file));
  return true;
}

bool Car::openMicrophoneFile(std::string* error) {
  if (options_.microphone.empty()) return true;
  std::optional<std::vector<std::int16_t>> samples = readForMicrophone(options_.microphone, error);
  if (!samples) {
    *error = "The microphone's file cannot be used: " + *error;
    return false;
  }
  auto recorded = std::make_unique<RecordedMicrophone>(std::move(*samples));
  microphoneThread_.add(recorded.get());
  microphoneThread_.start();
  microphone_ = std::move(recorded);
  return true;
}

void Car::openDevices() {
  std::string reason;
  if (!sound_ && usesDevices()) {
    sound_ = openSoundDevice(&mixer_, &reason);
    if (!sound_) spdlog::warn("There is no sound device ({}); nothing will be heard.", reason);
  }
  if (!sound_) sound_ = std::make_unique<ClockedOutput>(&mixer_, nullptr);
  if (!microphone_ && usesDevices()) {
    microphone_ = findMicrophone(&reason);
    if (!microphone_) spdlog::info("There is no microphone: {}.", reason);
  }
  equipment_.microphone = microphone_.get();
}

bool Car::finish() {
  microphoneThread_.stop();
  if (sound_) {
    sound_->finish(PLAYING_OUT);
    soundIsWhole_ = sound_->isWhole();
  }
  sound_.reset();
  return soundIsWhole_;
}

}  // namespace headunit
