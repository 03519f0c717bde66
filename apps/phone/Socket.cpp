#include "phone/Socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <future>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace phone {

namespace {

struct FreeAddresses {
  void operator()(addrinfo* list) const { freeaddrinfo(list); }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;
using Resolved = std::pair<int, Addresses>;

Resolved lookUp(const Endpoint& endpoint, int flags) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = flags | AI_NUMERICSERV;
  addrinfo* list = nullptr;
  const int result = getaddrinfo(endpoint.host.c_str(), std::to_string(endpoint.port).c_str(), &hints, &list);
  return {result, Addresses(list)};
}

// The system's look-up has no time limit, so it runs on a thread that may be left behind.
Addresses resolve(const Endpoint& endpoint, int flags, Micros limit, std::string* error) {
  auto promise = std::make_shared<std::promise<Resolved>>();
  std::future<Resolved> future = promise->get_future();
  std::thread([promise, endpoint, flags] { promise->set_value(lookUp(endpoint, flags)); }).detach();
  if (future.wait_for(std::chrono::microseconds(limit)) != std::future_status::ready) {
    *error = "cannot find out in time who \"" + endpoint.host + "\" is";
    return nullptr;
  }
  Resolved resolved = future.get();
  if (resolved.first != 0) *error = "unknown host \"" + endpoint.host + "\": " + gai_strerror(resolved.first);
  return std::move(resolved.second);
}

void setOption(const Socket& socket, int level, int option) {
  const int on = 1;
  setsockopt(socket.descriptor(), level, option, &on, sizeof on);
}

Socket openSocket(const addrinfo& address) {
  return Socket(
      ::socket(address.ai_family, address.ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, address.ai_protocol));
}

// 1 when `descriptor` is ready, 0 when the time is over, -1 when `wake` was raised.
int waitFor(int descriptor, short events, Micros limit, Wake* wake) {
  pollfd polled[2] = {{descriptor, events, 0}, {wake->descriptor(), POLLIN, 0}};
  const Micros end = limit < 0 ? 0 : steadyNow() + limit;
  for (;;) {
    const Micros left = std::max<Micros>(0, end - steadyNow());
    const int ready = ::poll(polled, 2, limit < 0 ? -1 : static_cast<int>((left + 999) / 1000));
    if (ready < 0 && errno == EINTR) continue;
    if (polled[1].revents != 0) return -1;
    return ready > 0 ? 1 : 0;
  }
}

// Empty text: connected. `awake` is set to false when the wake cut it short.
std::string connectOne(const Socket& socket, const addrinfo& address, Micros limit, Wake* wake, bool* woken) {
  if (!socket) return std::strerror(errno);
  if (::connect(socket.descriptor(), address.ai_addr, address.ai_addrlen) == 0) return {};
  if (errno != EINPROGRESS) return std::strerror(errno);
  const int ready = waitFor(socket.descriptor(), POLLOUT, limit, wake);
  *woken = ready < 0;
  if (ready <= 0) return "no answer in time";
  int problem = 0;
  socklen_t size = sizeof problem;
  getsockopt(socket.descriptor(), SOL_SOCKET, SO_ERROR, &problem, &size);
  return problem == 0 ? std::string() : std::strerror(problem);
}

}  // namespace

Socket& Socket::operator=(Socket&& other) noexcept {
  if (this != &other) {
    close();
    descriptor_ = other.release();
  }
  return *this;
}

int Socket::release() { return std::exchange(descriptor_, -1); }

void Socket::close() {
  if (descriptor_ >= 0) ::close(release());
}

Wake::Wake() : event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!event_) throw std::system_error(errno, std::generic_category(), "eventfd");
}

void Wake::raise() noexcept {
  const int before = errno;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write(event_.descriptor(), &one, sizeof one);
  errno = before;
}

void Wake::clear() noexcept {
  std::uint64_t count = 0;
  [[maybe_unused]] const ssize_t got = ::read(event_.descriptor(), &count, sizeof count);
}

std::string Endpoint::words() const {
  const bool bare = host.find(':') == std::string::npos;
  return (bare ? host : "[" + host + "]") + ":" + std::to_string(port);
}

std::optional<Endpoint> parseEndpoint(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string::npos || colon == 0) return std::nullopt;
  Endpoint endpoint;
  endpoint.host = text.substr(0, colon);
  if (endpoint.host.front() == '[' && endpoint.host.back() == ']') {
    endpoint.host = endpoint.host.substr(1, endpoint.host.size() - 2);
  } else if (endpoint.host.find(':') != std::string::npos) {
    return std::nullopt;
  }
  const char* last = text.data() + text.size();
  const auto [end, problem] = std::from_chars(text.data() + colon + 1, last, endpoint.port);
  if (problem != std::errc() || end != last || endpoint.host.empty()) return std::nullopt;
  return endpoint;
}

Micros steadyNow() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

Socket connectTo(const Endpoint& endpoint, Micros limit, Wake* wake, std::string* error) {
  const Micros end = steadyNow() + limit;
  const Addresses addresses = resolve(endpoint, 0, limit, error);
  std::string problem;
  for (const addrinfo* one = addresses.get(); one != nullptr; one = one->ai_next) {
    Socket socket = openSocket(*one);
    bool woken = false;
    problem = connectOne(socket, *one, std::max<Micros>(0, end - steadyNow()), wake, &woken);
    if (woken) return Socket();
    if (problem.empty()) {
      setOption(socket, IPPROTO_TCP, TCP_NODELAY);
      return socket;
    }
  }
  if (addresses) *error = problem;
  return Socket();
}

Socket listenOn(const Endpoint& endpoint, std::string* error) {
  constexpr Micros limit = 4'000'000;
  const Addresses addresses = resolve(endpoint, AI_PASSIVE, limit, error);
  if (!addresses) return Socket();
  Socket socket = openSocket(*addresses);
  setOption(socket, SOL_SOCKET, SO_REUSEADDR);
  if (::bind(socket.descriptor(), addresses->ai_addr, addresses->ai_addrlen) == 0 &&
      ::listen(socket.descriptor(), 1) == 0) {
    return socket;
  }
  *error = std::strerror(errno);
  return Socket();
}

Endpoint localEndpoint(const Socket& socket) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  char host[NI_MAXHOST] = "";
  char service[NI_MAXSERV] = "0";
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  getsockname(socket.descriptor(), plain, &size);
  getnameinfo(plain, size, host, sizeof host, service, sizeof service, NI_NUMERICHOST | NI_NUMERICSERV);
  return {host, static_cast<std::uint16_t>(std::stoul(service))};
}

Socket acceptOne(const Socket& listener, Wake* wake, std::string* error, Micros limit) {
  for (;;) {
    const int ready = waitFor(listener.descriptor(), POLLIN, limit, wake);
    if (ready == 0) *error = "no head unit has connected within " + std::to_string(limit / 1'000'000) + " s";
    if (ready <= 0) return Socket();
    Socket socket(::accept4(listener.descriptor(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (socket) {
      setOption(socket, IPPROTO_TCP, TCP_NODELAY);
      return socket;
    }
    if (errno == EAGAIN || errno == ECONNABORTED || errno == EINTR) continue;
    *error = std::strerror(errno);
    return Socket();
  }
}

}  // namespace phone
