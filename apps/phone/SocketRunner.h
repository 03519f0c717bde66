#ifndef PHONE_SOCKETRUNNER_H
#define PHONE_SOCKETRUNNER_H

#include <functional>

#include "phone/PhoneLink.h"
#include "phone/Socket.h"

namespace phone {

/// Runs a link over a connected stream socket, on the calling thread, until the link has ended and its last
/// bytes are out.
class SocketRunner {
 public:
  /// All are kept by pointer. The timers are wound by the steady clock while run() runs.
  SocketRunner(PhoneLink* link, Timers* timers, Wake* wake) : link_(link), timers_(timers), wake_(wake) {}

  /// Called on run()'s thread each time the wake was raised; without one, a raise ends the link at once.
  void onWake(std::function<void()> call) { woken_ = std::move(call); }

  /// Returns when link->end() is set.
  void run(Socket socket);

 private:
  std::size_t unsent() const;  ///< Bytes, about.
  void wait();
  void onWakeRaised();
  bool readSome();   ///< True if there were bytes.
  bool writeOnce();  ///< True if the connection took bytes.
  void writeSome();
  void sendRest();

  PhoneLink* link_;
  Timers* timers_;
  Wake* wake_;
  std::function<void()> woken_;
  Socket socket_;
  Bytes sending_;
  std::size_t sent_ = 0;
  bool atEnd_ = false;  ///< The peer has closed its half, or the connection is gone.
  std::string broken_;  ///< Why writing is no longer possible.
};

}  // namespace phone

#endif
