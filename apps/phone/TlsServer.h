#ifndef PHONE_TLSSERVER_H
#define PHONE_TLSSERVER_H

#include <memory>
#include <string>

#include "phone/Bytes.h"
#include "phone/Credentials.h"

namespace phone {

struct TlsOptions {
  bool verifyClient = true;  ///< Ask for the head unit's certificate and hold it against the root.
  std::string ciphers =
      "ECDHE-ECDSA-AES128-GCM-SHA256:ECDHE-ECDSA-AES256-GCM-SHA384:"
      "ECDHE-RSA-AES128-GCM-SHA256:ECDHE-RSA-AES256-GCM-SHA384";
};

/// The TLS 1.2 server end of a link, without a socket: bytes in, bytes out.
class TlsServer {
 public:
  enum class Step { proceeding, established, failed };

  /// Null if the credentials are unusable (unreadable, key and certificate do not match); `error` tells why.
  static std::unique_ptr<TlsServer> create(const Credentials& credentials, const TlsOptions& options,
                                           std::string* error);
  ~TlsServer();
  TlsServer(const TlsServer&) = delete;
  TlsServer& operator=(const TlsServer&) = delete;

  /// Takes the client's handshake records and sets `out` to all that is to be sent in return: one whole
  /// flight, also the last one on `established`, and the alert on `failed`; often nothing. After `failed`
  /// only error() may be called.
  Step handshake(const std::uint8_t* data, std::size_t size, Bytes* out);

  /// Plain bytes into whole TLS records. Only once established.
  Bytes encrypt(const std::uint8_t* data, std::size_t size);

  /// Whole TLS records into plain bytes. False, with error() set, if they are damaged or not whole; the
  /// connection is then beyond use.
  bool decrypt(const Bytes& records, Bytes* plain);

  bool established() const { return established_; }
  const std::string& error() const { return error_; }  ///< In words, after a failure.
  std::string cipher() const;                          ///< Name of the cipher suite, once established.
  std::string peerName() const;                        ///< The head unit certificate's subject; may be empty.

 private:
  struct State;
  explicit TlsServer(std::unique_ptr<State> state);
  void takeOutput(Bytes* out);
  bool readAll(std::size_t most, Bytes* plain);
  void describeFailure();

  std::unique_ptr<State> state_;
  bool established_ = false;
  std::string error_;
};

}  // namespace phone

#endif
