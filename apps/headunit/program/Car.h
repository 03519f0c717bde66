#pragma once

#include <memory>

#include "headunit/Equipment.h"
#include "headunit/Options.h"
#include "headunit/PacedThread.h"
#include "headunit/SoundOutput.h"

namespace headunit {

/// All that the program brings along for its links, as the command line wants it.
class Car {
 public:
  explicit Car(const Options& options) : options_(options), budget_(options.exitAfterFrames) {}
  ~Car() { finish(); }

  /// Returns false, with a sentence in `*error`, if something that the user named cannot be used.
  bool equip(std::string* error);
  /// Before the first link: sound device and microphone, unless files stand for them; the machine may have
  /// neither. Looking for them can fill a terminal, so whatever else may go wrong comes before.
  void openDevices();

  const Equipment& equipment() const { return equipment_; }
  /// Before the first link, if the phone is to be let: `camera` must stay until the last one.
  void allowVerification(const ScreenCamera* camera) { equipment_.camera = camera; }
  PictureSlot* slot() { return &slot_; }
  Controls* controls() { return &controls_; }
  Cluster* cluster() { return &cluster_; }
  ClusterKeys* clusterKeys() { return &clusterKeys_; }
  SlowWork* slowWork() { return &slowWork_; }

  /// Plays out the sound and closes its file. False if that does not hold all of it, which has been logged.
  bool finish();

 private:
  bool openSoundFile(std::string* error);
  bool openMicrophoneFile(std::string* error);
  bool loadDriveData(std::string* error);
  bool usesDevices() const;

  const Options& options_;
  Equipment equipment_;
  PictureSlot slot_;
  FrameBudget budget_;
  Mixer mixer_;
  Controls controls_;
  DriveScript drive_;
  std::unique_ptr<SoundOutput> sound_;
  bool soundIsWhole_ = true;
  std::unique_ptr<Microphone> microphone_;
  PacedThread microphoneThread_;
  Cluster cluster_;
  ClusterKeys clusterKeys_;
  PairedPhones pairedPhones_;
  SlowWork slowWork_{1};  // last to be made and first to go: its work uses all of the above
};

}  // namespace headunit
