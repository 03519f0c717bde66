#include "headunit/TcpTransport.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

namespace headunit {
namespace {

constexpr int FATAL = -1;
constexpr int TRY_AGAIN = -2;
constexpr int CLOSED_BY_PEER = -1;

bool wouldBlock(int error) { return error == EAGAIN || error == EWOULDBLOCK; }

}  // namespace

TcpTransport::TcpTransport(VantryReceiver* vantryReceiver, FileDescriptor socket,
                           std::function<void()> stopped)
    : Transport(vantryReceiver),
      socket_(std::move(socket)),
      stopped_(std::move(stopped)),
      lastRead_(Clock::now().time_since_epoch().count()) {}

void TcpTransport::abortTransfers() {
  aborted_.raise();
  shutdown(socket_.get(), SHUT_RDWR);
  stopped_();
}

int TcpTransport::read(void* data, unsigned int length) {
  const ssize_t count = recv(socket_.get(), data, length, 0);
  if (count > 0) {
    lastRead_.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
    bytesRead_ += static_cast<std::uint64_t>(count);
    return static_cast<int>(count);
  }
  if (isStopRequested()) return TRY_AGAIN;  // the loop around this call sees the stop by itself
  if (count == 0) return endBecause(CLOSED_BY_PEER);
  if (errno == EINTR || (wouldBlock(errno) && mayWaitFor(POLLIN))) return TRY_AGAIN;
  return endBecause(errno);
}

int TcpTransport::write(void* data, unsigned int length) {
  const ssize_t count = send(socket_.get(), data, length, MSG_NOSIGNAL);
  if (count >= 0) {
    bytesWritten_ += static_cast<std::uint64_t>(count);
    return static_cast<int>(count);
  }
  if (isStopRequested()) return TRY_AGAIN;
  if (errno == EINTR || (wouldBlock(errno) && mayWaitFor(POLLOUT))) return TRY_AGAIN;
  return endBecause(errno == EPIPE ? CLOSED_BY_PEER : errno);
}

bool TcpTransport::mayWaitFor(short event) {
  pollfd waiting[] = {{socket_.get(), event, 0}, {aborted_.descriptor(), POLLIN, 0}};
  return poll(waiting, 2, -1) >= 0 || errno == EINTR;
}

int TcpTransport::endBecause(int error) {
  int none = 0;
  error_.compare_exchange_strong(none, error);
  return FATAL;
}

std::string TcpTransport::brokenBy() const {
  const int error = error_;
  if (error == 0) return {};
  if (error == CLOSED_BY_PEER) return "the connection was closed";
  return std::string("the connection broke: ") + std::strerror(error);
}

}  // namespace headunit
