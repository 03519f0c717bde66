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
  /// Accepts each link on `listener`. The first is waited for longer: whoever connects may have to be
  /// started.
  SocketHeadUnit(Socket listener, Wake* wake) : listener_(std::move(listener)), wake_(wake) {}

  std::unique_ptr<LinkUnderTest> connect(LinkOptions options, std::string* error) override;
  /// Whether the wake was raised. It cuts short what is waited for at that time, and no later wait: there is
  /// a good-bye to be said.
  bool interrupted() const override { return interrupted_; }

 private:
  Socket reach(std::string* error);

  Endpoint endpoint_;
  Socket listener_;
  Wake* wake_;
  Micros callLimit_ = 30'000'000;  ///< For the next link that is accepted.
  bool interrupted_ = false;
};

}  // namespace phone::verify

#endif
