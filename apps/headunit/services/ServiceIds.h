#pragma once

namespace headunit {

/// The services of this head unit, as discovery numbers them.
enum ServiceId : int {
  VIDEO = 1,
  MEDIA_SOUND,
  GUIDANCE,
  SYSTEM_SOUND,
  TELEPHONY,
  MICROPHONE,
  INPUT,
  SENSORS,
  BLUETOOTH,
  RADIO,
  NAVIGATION,
  PLAYBACK,
  PHONE,
  BROWSER,
  NOTIFICATIONS,
  ECHO_EXTENSION,
  VERIFICATION
};

}  // namespace headunit
