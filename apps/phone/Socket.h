#ifndef PHONE_SOCKET_H
#define PHONE_SOCKET_H

#include <optional>
#include <string>

#include "phone/Timers.h"

namespace phone {

/// Owns a file descriptor.
class Socket {
 public:
  Socket() = default;
  explicit Socket(int descriptor) : descriptor_(descriptor) {}
  Socket(Socket&& other) noexcept : descriptor_(other.release()) {}
  Socket& operator=(Socket&& other) noexcept;
  ~Socket() { close(); }

  int descriptor() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }
  int release();
  void close();

 private:
  int descriptor_ = -1;
};

/// Wakes an event loop, from any thread or from a signal handler. It stays raised until cleared.
class Wake {
 public:
  Wake();  ///< Throws std::system_error.
  void raise() noexcept;
  void clear() noexcept;
  int descriptor() const { return event_.descriptor(); }

 private:
  Socket event_;
};

struct Endpoint {
  std::string host;
  std::uint16_t port = 0;
  std::string words() const;  ///< "HOST:PORT", with brackets around an IPv6 address.
};

/// HOST:PORT or [HOST]:PORT; empty if it is neither.
std::optional<Endpoint> parseEndpoint(const std::string& text);

/// The steady clock.
Micros steadyNow();

/// Connects within `limit`. An invalid socket on failure, with `error` telling why; and when `wake` was
/// raised, with `error` empty.
Socket connectTo(const Endpoint& endpoint, Micros limit, Wake* wake, std::string* error);

/// Listens; port 0 lets the system choose. An invalid socket on failure, with `error` telling why.
Socket listenOn(const Endpoint& endpoint, std::string* error);
/// Where a listening socket really listens.
Endpoint localEndpoint(const Socket& socket);
/// Waits for one peer, without a `limit` if that is negative. An invalid socket when `wake` was raised, or on
/// failure with `error` set.
Socket acceptOne(const Socket& listener, Wake* wake, std::string* error, Micros limit = -1);

}  // namespace phone

#endif
