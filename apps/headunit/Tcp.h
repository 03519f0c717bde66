#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "headunit/Clock.h"
#include "headunit/FileDescriptor.h"

namespace headunit {

struct Address {
  std::string host;
  std::uint16_t port = 0;

  std::string words() const;  ///< "HOST:PORT", with brackets around an IPv6 address.
};

/// HOST:PORT or [HOST]:PORT; nothing if it is neither.
std::optional<Address> parseAddress(const std::string& text);

/// Listens; port 0 lets the system choose. An empty descriptor on failure, with the reason in `*error`.
FileDescriptor listenOn(const Address& address, std::string* error);

/// Where a listening socket really listens.
Address localAddress(const FileDescriptor& socket);

/// Takes a waiting peer, without blocking; an empty descriptor if there is none any more.
FileDescriptor acceptFrom(const FileDescriptor& listener, Address* peer);

/// Whether the peer has closed this connection already, whatever it has sent before.
bool hasGone(const FileDescriptor& connection);

/// Why nobody could be connected to.
struct NoConnection {
  std::string reason;
  bool hostUnknown = false;  ///< so that there is nobody who might listen a moment later
};

/// Connects within `limit`; returns at once when `abort` is raised. An empty descriptor on failure, with the
/// reason in `*why`.
FileDescriptor connectTo(const Address& address, milliseconds limit, const WakeEvent& abort,
                         NoConnection* why);

}  // namespace headunit
