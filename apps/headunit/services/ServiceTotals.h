#pragma once

#include <cstdint>
#include <mutex>

namespace headunit {

/// How often what happened on the services of the cluster. `…Opened`: channels that the phone opened.
struct ServiceTotals {
  std::uint64_t pairingOpened = 0;
  std::uint64_t pairingRequests = 0;
  std::uint64_t pairingsDelayed = 0;
  std::uint64_t pairingsAccepted = 0;
  std::uint64_t pairingsRefused = 0;
  std::uint64_t radioOpened = 0;
  std::uint64_t radioCommands = 0;  ///< all that the phone asked of the tuner
  std::uint64_t radioScans = 0;     ///< that came to their end
  std::uint64_t navigationOpened = 0;
  std::uint64_t turns = 0;
  std::uint64_t distances = 0;
  std::uint64_t playbackOpened = 0;
  std::uint64_t playbackStates = 0;
  std::uint64_t songs = 0;  ///< metadata updates
  std::uint64_t phoneOpened = 0;
  std::uint64_t phoneStates = 0;
  std::uint64_t calls = 0;  ///< that were not there in the state before
  std::uint64_t browserOpened = 0;
  std::uint64_t browserPages = 0;  ///< shown
  std::uint64_t browserActions = 0;
  std::uint64_t notificationOpened = 0;
  std::uint64_t notificationsShown = 0;
  std::uint64_t notificationsDismissed = 0;
  std::uint64_t notificationsSent = 0;
  std::uint64_t notificationsAcknowledged = 0;  ///< by the phone, of those sent
  std::uint64_t echoOpened = 0;
  std::uint64_t echoes = 0;
  std::uint64_t images = 0;  ///< decoded
  std::uint64_t keys = 0;    ///< of the cluster that were sent to the phone
};

/// Counts. Any thread.
class ServiceTally {
 public:
  void count(std::uint64_t ServiceTotals::*what) {
    const std::lock_guard lock(mutex_);
    ++(totals_.*what);
  }

  ServiceTotals totals() const {
    const std::lock_guard lock(mutex_);
    return totals_;
  }

 private:
  mutable std::mutex mutex_;
  ServiceTotals totals_;
};

}  // namespace headunit
