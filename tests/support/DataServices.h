#pragma once

#include <map>

#include "BluetoothEndpoint.h"
#include "MediaBrowserEndpoint.h"
#include "MediaPlaybackStatusEndpoint.h"
#include "NavigationStatusEndpoint.h"
#include "NotificationEndpoint.h"
#include "NumberedRecords.h"
#include "PhoneStatusEndpoint.h"
#include "RadioEndpoint.h"
#include "VantryReceiver.h"
#include "VantryVerificationVendorExtension.h"
#include "VendorExtension.h"

namespace test {

/// How often each kind of message has reached the host, and whether it was what was due: by service and type.
/// All kinds are there from the beginning.
class HostArrivals {
 public:
  HostArrivals();
  Arrivals& of(int service, int type) { return arrivals.at({service, type}); }
  const std::map<std::pair<int, int>, Arrivals>& all() const { return arrivals; }

 private:
  std::map<std::pair<int, int>, Arrivals> arrivals;
};

/// The services that carry no stream, and their hosts: each compares what it is told with what was due, and
/// answers where an answer is wanted.
class DataServices {
 public:
  explicit DataServices(MessageRouter* router);

  /// Host thread, one at a time: says message `number` of each kind that is no answer.
  void talks(Number number);
  void registersAt(VantryReceiver* receiver);
  const HostArrivals& heard() const { return *arrivals; }

 private:
  class RawExtension;

  const std::shared_ptr<HostArrivals> arrivals = std::make_shared<HostArrivals>();
  BluetoothEndpoint bluetooth;
  RadioEndpoint radio;
  NavigationStatusEndpoint navigation;
  MediaPlaybackStatusEndpoint playback;
  PhoneStatusEndpoint phone;
  MediaBrowserEndpoint browser;
  NotificationEndpoint notifications;
  std::unique_ptr<VendorExtension> extension;
  VantryVerificationVendorExtension verification;
};

}  // namespace test
