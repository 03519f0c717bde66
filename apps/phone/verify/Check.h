#ifndef PHONE_VERIFY_CHECK_H
#define PHONE_VERIFY_CHECK_H

#include <string>
#include <vector>

namespace phone::verify {

class Probe;

/// One behaviour that a phone can observe.
struct Check {
  const char* name;     ///< "group.behaviour"
  const char* meaning;  ///< One sentence.
  void (*run)(Probe&);  ///< Returns if the head unit behaves so; otherwise throws one of those below.
};

/// The head unit behaves otherwise.
struct Mismatch {
  std::string expected;
  std::string came;
};

/// The head unit does not offer what the check is about.
struct NotOffered {
  std::string what;
};

/// The user wants to end.
struct Interrupted {};

using Checks = std::vector<Check>;

Checks bringUpChecks();
Checks discoveryChecks();
Checks controlChecks();
Checks frameChecks();
Checks channelChecks();
Checks videoChecks();
Checks audioChecks();
Checks microphoneChecks();
Checks sensorChecks();
Checks inputChecks();
Checks carServiceChecks();      ///< Bluetooth, radio, navigation.
Checks clusterServiceChecks();  ///< Playback, phone, browser, notifications.
Checks vendorChecks();          ///< Vendor extensions of which nothing is known.
Checks verificationChecks();
/// All of the above, in this order.
Checks allChecks();

}  // namespace phone::verify

#endif
