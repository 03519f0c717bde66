#include "SocketTransport.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <stdexcept>

namespace test {
namespace {

constexpr int FATAL = -1;
constexpr int TRY_AGAIN = -2;

}  // namespace

SocketTransport::~SocketTransport() {
  requestStop();
  waitForExit();
}

// What waits for the socket wakes by its end, and finds no more to read and nobody to write to.
void SocketTransport::abortTransfers() { ::shutdown(socket_.descriptor(), SHUT_RDWR); }

int SocketTransport::read(void* data, unsigned int length) {
  const ssize_t count = recv(socket_.descriptor(), data, length, 0);
  if (count > 0) return static_cast<int>(count);
  return count < 0 && mayTryAgain(POLLIN) ? TRY_AGAIN : FATAL;
}

int SocketTransport::write(void* data, unsigned int length) {
  const ssize_t count = send(socket_.descriptor(), data, length, MSG_NOSIGNAL);
  if (count >= 0) return static_cast<int>(count);
  if (errno == EAGAIN) {
    const std::lock_guard<std::mutex> guard(lock_);
    writeBlocks_ = true;
    changed_.notify_all();
    errno = EAGAIN;
  }
  return mayTryAgain(POLLOUT) ? TRY_AGAIN : FATAL;
}

bool SocketTransport::mayTryAgain(short event) {
  if (errno != EAGAIN && errno != EINTR) return false;
  pollfd waiting = {socket_.descriptor(), event, 0};
  return poll(&waiting, 1, -1) >= 0 || errno == EINTR;
}

bool SocketTransport::waitsForBlockedWrite() {
  constexpr std::chrono::minutes LONG_ENOUGH(1);
  std::unique_lock<std::mutex> guard(lock_);
  return changed_.wait_for(guard, LONG_ENOUGH, [this] { return writeBlocks_; });
}

TcpPair::TcpPair() {
  constexpr phone::Micros LONG_ENOUGH = 60'000'000;
  std::string error;
  phone::Wake never;
  const phone::Socket listener = phone::listenOn({"127.0.0.1", 0}, &error);
  if (listener) phone = phone::connectTo(phone::localEndpoint(listener), LONG_ENOUGH, &never, &error);
  if (phone) headUnit = phone::acceptOne(listener, &never, &error);
  if (!headUnit) throw std::runtime_error(error);
}

}  // namespace test
