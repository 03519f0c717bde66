#include "headunit/Tcp.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>

namespace headunit {
namespace {

using AddressList = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

AddressList resolve(const Address& address, int flags, std::string* error) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = flags | AI_NUMERICSERV;
  addrinfo* found = nullptr;
  const int status = getaddrinfo(address.host.c_str(), std::to_string(address.port).c_str(), &hints, &found);
  if (status != 0) *error = "the host '" + address.host + "' is not known: " + gai_strerror(status);
  return AddressList(status == 0 ? found : nullptr, &freeaddrinfo);
}

FileDescriptor openSocket(const addrinfo& target) {
  return FileDescriptor(
      socket(target.ai_family, target.ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, target.ai_protocol));
}

Address addressOf(const sockaddr_storage& storage, socklen_t size) {
  char host[NI_MAXHOST] = "?";
  char port[NI_MAXSERV] = "0";
  getnameinfo(reinterpret_cast<const sockaddr*>(&storage), size, host, sizeof host, port, sizeof port,
              NI_NUMERICHOST | NI_NUMERICSERV);
  return {host, static_cast<std::uint16_t>(std::stoi(port))};
}

// Acknowledgements are small, and a frame's last segment must not wait for more.
void sendWithoutDelay(const FileDescriptor& socket) {
  const int on = 1;
  setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool bindAndListen(const FileDescriptor& socket, const addrinfo& target) {
  const int on = 1;
  setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  return bind(socket.get(), target.ai_addr, target.ai_addrlen) == 0 && listen(socket.get(), 8) == 0;
}

// True once the pending connection stands; errno tells why not.
bool finishConnecting(const FileDescriptor& socket, milliseconds limit, const WakeEvent& abort) {
  pollfd waiting[] = {{socket.get(), POLLOUT, 0}, {abort.descriptor(), POLLIN, 0}};
  const int ready = poll(waiting, 2, static_cast<int>(limit.count()));
  if (ready < 0) return false;
  if (waiting[0].revents == 0) {
    errno = waiting[1].revents != 0 ? ECANCELED : ETIMEDOUT;
    return false;
  }
  int problem = 0;
  socklen_t size = sizeof problem;
  getsockopt(socket.get(), SOL_SOCKET, SO_ERROR, &problem, &size);
  errno = problem;
  return problem == 0;
}

}  // namespace

std::string Address::words() const {
  const bool bracketed = host.find(':') != std::string::npos;
  return (bracketed ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

std::optional<Address> parseAddress(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string::npos || colon == 0) return {};
  std::string host = text.substr(0, colon);
  if (host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  } else if (host.find(':') != std::string::npos) {
    return {};
  }
  Address address{host, 0};
  const char* const end = text.data() + text.size();
  const auto [stop, problem] = std::from_chars(text.data() + colon + 1, end, address.port);
  if (host.empty() || problem != std::errc() || stop != end) return {};
  return address;
}

FileDescriptor listenOn(const Address& address, std::string* error) {
  const AddressList targets = resolve(address, AI_PASSIVE, error);
  for (const addrinfo* target = targets.get(); target != nullptr; target = target->ai_next) {
    FileDescriptor socket = openSocket(*target);
    if (socket && bindAndListen(socket, *target)) return socket;
    *error = errno == EADDRINUSE ? "another program is using that port" : std::strerror(errno);
  }
  return {};
}

Address localAddress(const FileDescriptor& socket) {
  sockaddr_storage storage{};
  socklen_t size = sizeof storage;
  getsockname(socket.get(), reinterpret_cast<sockaddr*>(&storage), &size);
  return addressOf(storage, size);
}

FileDescriptor acceptFrom(const FileDescriptor& listener, Address* peer) {
  sockaddr_storage storage{};
  socklen_t size = sizeof storage;
  FileDescriptor socket(
      accept4(listener.get(), reinterpret_cast<sockaddr*>(&storage), &size, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (!socket) return {};
  sendWithoutDelay(socket);
  *peer = addressOf(storage, size);
  return socket;
}

bool hasGone(const FileDescriptor& connection) {
  pollfd looked{connection.get(), POLLRDHUP, 0};
  return poll(&looked, 1, 0) == 1;
}

FileDescriptor connectTo(const Address& address, milliseconds limit, const WakeEvent& abort,
                         NoConnection* why) {
  const AddressList targets = resolve(address, 0, &why->reason);
  why->hostUnknown = targets == nullptr;
  for (const addrinfo* target = targets.get(); target != nullptr; target = target->ai_next) {
    FileDescriptor socket = openSocket(*target);
    const bool connected = socket && (connect(socket.get(), target->ai_addr, target->ai_addrlen) == 0 ||
                                      (errno == EINPROGRESS && finishConnecting(socket, limit, abort)));
    if (connected) {
      sendWithoutDelay(socket);
      return socket;
    }
    why->reason = errno == ECONNREFUSED ? "nobody listens there" : std::strerror(errno);
    if (errno == ECANCELED) break;
  }
  return {};
}

}  // namespace headunit
