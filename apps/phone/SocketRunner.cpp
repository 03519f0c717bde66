#include "phone/SocketRunner.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace phone {

namespace {

constexpr std::size_t chunk = std::size_t{64} << 10;
constexpr Micros farewellLimit = 500'000;

// A head unit that asks and does not read is asked to wait: what it says may call for answers, and those for
// memory.
constexpr std::size_t mostUnsent = std::size_t{4} << 20;

constexpr Micros forever = -1;

// A frame's time is told in microseconds, which plain poll cannot wait for.
template <std::size_t count>
int pollFor(pollfd (&polled)[count], Micros limit) {
  const timespec time{limit / 1'000'000, limit % 1'000'000 * 1000};
  return ::ppoll(polled, count, limit < 0 ? nullptr : &time, nullptr);
}

bool wouldBlock() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

}  // namespace

void SocketRunner::run(Socket socket) {
  socket_ = std::move(socket);
  fcntl(socket_.descriptor(), F_SETFL, fcntl(socket_.descriptor(), F_GETFL) | O_NONBLOCK);
  while (!link_->end()) {
    timers_->advance(steadyNow());
    writeSome();
    if (!link_->end()) wait();
  }
  sendRest();
  socket_.close();
}

std::size_t SocketRunner::unsent() const { return sending_.size() - sent_ + link_->outputSize(); }

void SocketRunner::wait() {
  pollfd polled[2] = {{socket_.descriptor(), 0, 0}, {wake_->descriptor(), POLLIN, 0}};
  if (unsent() < mostUnsent) polled[0].events |= POLLIN;
  if (unsent() > 0) polled[0].events |= POLLOUT;
  const std::optional<Micros> next = timers_->next();
  if (pollFor(polled, next ? std::max<Micros>(0, *next - steadyNow()) : forever) <= 0) return;
  timers_->advance(steadyNow());
  if (polled[1].revents != 0) onWakeRaised();
  if ((polled[0].revents & ~POLLOUT) != 0) readSome();
}

void SocketRunner::onWakeRaised() {
  wake_->clear();
  if (woken_) {
    woken_();
  } else {
    link_->finish({true, Side::phone, "was interrupted", ""});
  }
}

bool SocketRunner::readSome() {
  std::array<std::uint8_t, chunk> bytes;
  const ssize_t got = ::recv(socket_.descriptor(), bytes.data(), bytes.size(), 0);
  if (got > 0) {
    link_->feed(bytes.data(), static_cast<std::size_t>(got));
  } else if (got == 0 || !wouldBlock()) {
    atEnd_ = true;
    link_->streamEnded(got == 0 ? "" : std::strerror(errno));
  }
  return got > 0;
}

bool SocketRunner::writeOnce() {
  if (sent_ == sending_.size()) {
    sending_ = link_->takeOutput(chunk);
    sent_ = 0;
  }
  if (sending_.empty()) return false;
  const ssize_t sent = ::send(socket_.descriptor(), &sending_[sent_], sending_.size() - sent_, MSG_NOSIGNAL);
  if (sent < 0 && !wouldBlock()) broken_ = std::strerror(errno);
  if (sent > 0) sent_ += static_cast<std::size_t>(sent);
  return sent > 0;
}

void SocketRunner::writeSome() {
  while (writeOnce()) {
  }
  if (broken_.empty()) return;
  // The head unit may have told its reason before it went: that is read before the link is given up.
  while (!link_->end() && readSome()) {
  }
  link_->streamEnded(broken_);
}

// Closing a socket with bytes unread resets the connection, and the peer could lose the last message by it.
void SocketRunner::sendRest() {
  const Micros end = steadyNow() + farewellLimit;
  while (broken_.empty() && !atEnd_ && unsent() > 0 && steadyNow() < end) {
    pollfd polled[1] = {{socket_.descriptor(), POLLOUT, 0}};
    if (!writeOnce()) pollFor(polled, end - steadyNow());
  }
  ::shutdown(socket_.descriptor(), SHUT_WR);
  while (broken_.empty() && !atEnd_ && steadyNow() < end) {
    pollfd polled[1] = {{socket_.descriptor(), POLLIN, 0}};
    if (pollFor(polled, end - steadyNow()) > 0) readSome();
  }
}

}  // namespace phone
