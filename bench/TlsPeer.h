#pragma once

#include <cstddef>
#include <string>
#include <vector>

typedef struct bio_st BIO;
typedef struct ssl_ctx_st SSL_CTX;
typedef struct ssl_st SSL;

/// PEM texts of a root that signed itself, and serves as everybody's certificate.
struct BenchCredentials {
  std::string certificate;
  std::string key;
};

const BenchCredentials& benchCredentials();

/// One end of a bare TLS 1.2 connection over memory BIOs: what a program would do with OpenSSL and nothing
/// else.
class TlsPeer {
 public:
  enum class Role { client, server };
  explicit TlsPeer(Role role);
  ~TlsPeer();
  TlsPeer(const TlsPeer&) = delete;
  TlsPeer& operator=(const TlsPeer&) = delete;

  /// Takes a step of the handshake; returns true once it is done.
  bool handshake();
  void putCiphertext(const void* data, std::size_t size);
  std::size_t takeCiphertext(void* data, std::size_t room);
  std::vector<unsigned char> takeAllCiphertext();

  /// Enciphers and fetches the record; returns its size.
  std::size_t encrypt(const void* data, std::size_t size, void* out, std::size_t room);
  /// Puts one record in and reads its plaintext; returns the plaintext's size.
  std::size_t decrypt(const void* record, std::size_t size, void* out, std::size_t room);

  std::string cipher() const;

 private:
  SSL_CTX* context_;
  SSL* ssl_;
  BIO* readBio_;
  BIO* writeBio_;
};
