#pragma once

namespace test {

/// The services that a head unit of these tests may have, as discovery numbers them.
enum ServiceId {
  VIDEO = 1,
  MEDIA,
  GUIDANCE,
  SYSTEM,
  TELEPHONY,
  MICROPHONE,
  SENSORS,
  INPUT,
  BLUETOOTH,
  RADIO,
  NAVIGATION,
  PLAYBACK,
  PHONE,
  BROWSER,
  NOTIFICATIONS,
  EXTENSION,
  VERIFICATION
};

}  // namespace test
