#include "phone/program/Signals.h"

#include <csignal>

namespace phone {

namespace {

Wake* interruptWake = nullptr;

extern "C" void onSignal(int) { interruptWake->raise(); }

}  // namespace

Wake* wakeOnSignals() {
  static Wake wake;
  interruptWake = &wake;
  struct sigaction action {};
  action.sa_handler = onSignal;
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    sigaction(number, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);
  }
  // Whoever reads the output may go away; that is no reason to leave without good-bye.
  std::signal(SIGPIPE, SIG_IGN);
  return &wake;
}

}  // namespace phone
