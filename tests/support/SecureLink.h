#pragma once

#include <memory>

#include "PlainLink.h"
#include "TestCredentials.h"
#include "phone/TlsServer.h"

namespace test {

/// A PlainLink whose phone can be brought through the TLS handshake, step by step or at once, and then
/// enciphers.
class SecureLink : public PlainLink {
 public:
  /// The head unit gets its credentials, trusting `root`; the phone shows `identity`.
  explicit SecureLink(const Identity& identity = credentials().phone,
                      const std::string& root = credentials().root,
                      const phone::TlsOptions& options = phone::TlsOptions());

  /// Version exchange: afterwards the head unit's first handshake message waits to be sent.
  void acceptsVersion();
  /// Takes the handshake message that the head unit sent last and answers with the phone's next flight.
  /// Returns that flight, which is empty where there was nothing to answer.
  Bytes nextFlight();
  /// Sends TLS records in a MESSAGE_SSL_HANDSHAKE, in the clear.
  int sendsHandshake(const Bytes& records);
  /// Everything up to the AuthResponse, which is consumed together with all before it.
  void bringUp();

  /// TLS records around `plain`; in the order of the calls.
  Bytes encrypted(const Bytes& plain);
  /// The plain bytes in TLS records of the head unit.
  Bytes decrypted(const Bytes& records);
  /// Sends a whole message in one encrypted frame.
  int sendsEncrypted(int channel, const Bytes& wholeMessage);

  phone::TlsServer& phone() { return *phone_; }

 private:
  std::unique_ptr<phone::TlsServer> phone_;
};

}  // namespace test
