#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>

#include "headunit/Cluster.h"
#include "headunit/ClusterKeys.h"
#include "headunit/Controls.h"
#include "headunit/Credentials.h"
#include "headunit/DriveScript.h"
#include "headunit/Microphone.h"
#include "headunit/Mixer.h"
#include "headunit/RecentLines.h"
#include "headunit/ScreenCamera.h"
#include "headunit/SlowWork.h"
#include "headunit/TouchScript.h"
#include "headunit/VideoPipeline.h"
#include "headunit/services/PhoneAddresses.h"

namespace headunit {

/// What every link of the program shares: the car, so to speak. All that is pointed at outlives the links.
struct Equipment {
  Credentials credentials;
  std::function<std::unique_ptr<VideoDecoder>()> makeDecoder;
  PictureSlot* slot = nullptr;
  FrameBudget* budget = nullptr;
  Size margins;  ///< what the screen does not show of each picture
  Mixer* mixer = nullptr;
  Microphone* microphone = nullptr;  ///< null: there is none
  Controls* controls = nullptr;
  std::set<int> keyCodes;  ///< that the controls can report
  const DriveScript* drive = nullptr;
  std::optional<TouchScript> touches;
  RecentLines* libraryLines = nullptr;
  Cluster* cluster = nullptr;
  ClusterKeys* clusterKeys = nullptr;
  SlowWork* slowWork = nullptr;
  std::function<Image(const std::string&)> decodeImage;  ///< of an image file's bytes; null if it is none
  PairedPhones* pairedPhones = nullptr;
  bool autoPair = false;                 ///< pairs without asking the user
  bool opensBrowser = false;             ///< shows what can be played without the user's asking
  const ScreenCamera* camera = nullptr;  ///< null: nobody may look, or drive the car from the phone
};

}  // namespace headunit
