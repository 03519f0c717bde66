#pragma once

#include <condition_variable>
#include <mutex>

#include "Transport.h"
#include "phone/Socket.h"

namespace test {

/// A host's transport over a connected socket.
class SocketTransport : public Transport {
 public:
  /// `socket` does not block by itself.
  SocketTransport(VantryReceiver* link, phone::Socket socket) : Transport(link), socket_(std::move(socket)) {}
  /// Stops the threads if the test has not.
  ~SocketTransport() override;

  void abortTransfers() override;
  int read(void* data, unsigned int length) override;
  int write(void* data, unsigned int length) override;

  /// Blocks until a write finds no room and waits for some; false if that takes for ever.
  bool waitsForBlockedWrite();

 private:
  bool mayTryAgain(short event);

  phone::Socket socket_;
  std::mutex lock_;  // guards writeBlocks_
  std::condition_variable changed_;
  bool writeBlocks_ = false;
};

/// The two ends of a TCP connection over loopback, on a port that the system chose.
struct TcpPair {
  TcpPair();
  phone::Socket headUnit;
  phone::Socket phone;
};

}  // namespace test
