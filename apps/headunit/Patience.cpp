#include "headunit/Patience.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>

namespace headunit {

void Patience::end() {
  over_ = true;
  wake_.raise();
}

void Patience::waitUntil(std::optional<TimePoint> deadline, int descriptor) {
  pollfd waiting[] = {{wake_.descriptor(), POLLIN, 0}, {signals_, POLLIN, 0}, {descriptor, POLLIN, 0}};
  int timeout = -1;
  if (deadline) {
    const auto left = std::chrono::ceil<milliseconds>(*deadline - now()).count();
    timeout = static_cast<int>(std::clamp<long long>(left, 0, 60'000));
  }
  poll(waiting, 3, timeout);
  if (waiting[1].revents == 0) return;
  signalfd_siginfo signal;
  if (read(signals_, &signal, sizeof signal) > 0) over_ = true;
}

}  // namespace headunit
