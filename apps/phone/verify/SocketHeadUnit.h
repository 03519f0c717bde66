#ifndef PHONE_VERIFY_SOCKETHEADUNIT_H
#define PHONE_VERIFY_SOCKETHEADUNIT_H

#include "phone/Socket.h"
#include "phone/verify/LinkUnderTest.h"

namespace phone::verify {

/// A head unit at the other end of a TCP connection; each link is a connection of its own.
class SocketHeadUnit : public HeadUnit {
 public:
  /// Connects to `endpoint` for each link.
  SocketHeadUnit(Endpoint endpoint, Wake* wake) : endpoint_(std::move(endpoint)), wake_(wake) {}
  /// Accepts each link on `listener`.
  SocketHeadUnit(Socket listener, Wake* wake) : listener_(std::move(listener)), wake_(wake) {}

  std::unique_ptr<LinkUnderTest> connect(LinkOptions options, std::string* error) override;

 private:
  Socket reach(std::string* error);

  Endpoint endpoint_;
  Socket listener_;
  Wake* wake_;
};

}  // namespace phone::verify

#endif
