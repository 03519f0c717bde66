#include "phone/verify/SocketHeadUnit.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace phone::verify {

namespace {

constexpr Micros connectLimit = 4'000'000;
constexpr Micros farewellLimit = 500'000;
constexpr std::size_t chunk = std::size_t{64} << 10;

bool wouldBlock() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

// A head unit that serves one phone at a time may turn the next link away until it has seen this one's end.
void endInOrder(const Socket& socket) {
  ::shutdown(socket.descriptor(), SHUT_WR);
  std::array<std::uint8_t, chunk> unread;
  pollfd polled{socket.descriptor(), POLLIN, 0};
  const Micros end = steadyNow() + farewellLimit;
  for (Micros left = farewellLimit; left > 0; left = end - steadyNow()) {
    if (::poll(&polled, 1, static_cast<int>(left / 1000 + 1)) <= 0) continue;
    const ssize_t got = ::recv(socket.descriptor(), unread.data(), unread.size(), 0);
    if (got == 0 || (got < 0 && !wouldBlock())) return;
  }
}

class SocketLink : public LinkUnderTest {
 public:
  /// A raised `wake` ends a wait, and sets `interrupted`. Both outlive the link.
  SocketLink(LinkOptions options, Socket socket, Wake* wake, bool* interrupted)
      : link_(std::move(options)), socket_(std::move(socket)), wake_(wake), interrupted_(interrupted) {
    fcntl(socket_.descriptor(), F_SETFL, fcntl(socket_.descriptor(), F_GETFL) | O_NONBLOCK);
  }

  ~SocketLink() override {
    if (!closed_) endInOrder(socket_);
  }
  SocketLink(const SocketLink&) = delete;
  SocketLink& operator=(const SocketLink&) = delete;

  PhoneLink& link() override { return link_; }

  bool runUntil(const std::function<bool()>& done, Micros limit) override {
    const Micros end = steadyNow() + limit;
    for (;;) {
      writeSome();
      if (done()) return true;
      const Micros left = end - steadyNow();
      if (left <= 0 || closed_ || !waitFor(left)) return false;
    }
  }

 private:
  // False if the wake was raised.
  bool waitFor(Micros left) {
    pollfd polled[2] = {{socket_.descriptor(), POLLIN, 0}, {wake_->descriptor(), POLLIN, 0}};
    if (sent_ < sending_.size() || link_.hasOutput()) polled[0].events |= POLLOUT;
    if (::poll(polled, 2, static_cast<int>(left / 1000 + 1)) <= 0) return true;
    if (polled[1].revents != 0) {
      wake_->clear();
      *interrupted_ = true;
      return false;
    }
    if ((polled[0].revents & ~POLLOUT) != 0) readSome();
    return true;
  }

  void readSome() {
    std::array<std::uint8_t, chunk> bytes;
    const ssize_t got = ::recv(socket_.descriptor(), bytes.data(), bytes.size(), 0);
    if (got > 0) return link_.feed(bytes.data(), static_cast<std::size_t>(got));
    if (got < 0 && wouldBlock()) return;
    closed_ = true;
    link_.streamEnded(got == 0 ? "" : std::strerror(errno));
  }

  void writeSome() {
    while (!closed_) {
      if (sent_ == sending_.size()) {
        sending_ = link_.takeOutput(chunk);
        sent_ = 0;
      }
      if (sending_.empty()) return;
      const ssize_t sent =
          ::send(socket_.descriptor(), &sending_[sent_], sending_.size() - sent_, MSG_NOSIGNAL);
      // A head unit that has gone may have told why: that is read before the link is given up.
      if (sent < 0 && !wouldBlock()) return readSome();
      if (sent <= 0) return;
      sent_ += static_cast<std::size_t>(sent);
    }
  }

  PhoneLink link_;
  Socket socket_;
  Wake* wake_;
  bool* interrupted_;
  Bytes sending_;
  std::size_t sent_ = 0;
  bool closed_ = false;
};

}  // namespace

Socket SocketHeadUnit::reach(std::string* error) {
  if (!listener_) {
    Socket socket = connectTo(endpoint_, connectLimit, wake_, error);
    if (!error->empty()) *error = "cannot connect to " + endpoint_.words() + ": " + *error;
    return socket;
  }
  return acceptOne(listener_, wake_, error, std::exchange(callLimit_, connectLimit));
}

std::unique_ptr<LinkUnderTest> SocketHeadUnit::connect(LinkOptions options, std::string* error) {
  Socket socket = reach(error);
  if (socket)
    return std::make_unique<SocketLink>(std::move(options), std::move(socket), wake_, &interrupted_);
  if (!error->empty()) return nullptr;
  wake_->clear();
  interrupted_ = true;
  *error = "interrupted";
  return nullptr;
}

}  // namespace phone::verify
