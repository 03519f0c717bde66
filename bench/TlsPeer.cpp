#include "TlsPeer.h"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <cstdio>
#include <cstdlib>

namespace {

void require(bool holds, const char* what) {
  if (holds) return;
  fprintf(stderr, "benchmark set-up failed: %s\n", what);
  exit(2);
}

std::string contentOf(BIO* memory) {
  char* data = nullptr;
  const long size = BIO_get_mem_data(memory, &data);
  std::string text(data, static_cast<std::size_t>(size));
  BIO_free(memory);
  return text;
}

X509* makeCertificate(EVP_PKEY* key) {
  X509* const certificate = X509_new();
  X509_set_version(certificate, 2);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
  X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
  X509_gmtime_adj(X509_getm_notAfter(certificate), 24L * 3600);
  X509_set_pubkey(certificate, key);
  X509_NAME* const name = X509_get_subject_name(certificate);
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("bench"), -1,
                             -1, 0);
  X509_set_issuer_name(certificate, name);
  require(X509_sign(certificate, key, EVP_sha256()) > 0, "signing the certificate");
  return certificate;
}

BenchCredentials makeCredentials() {
  EVP_PKEY* const key = EVP_EC_gen("P-256");
  require(key != nullptr, "making a key");
  X509* const certificate = makeCertificate(key);
  BIO* const certificateText = BIO_new(BIO_s_mem());
  BIO* const keyText = BIO_new(BIO_s_mem());
  PEM_write_bio_X509(certificateText, certificate);
  PEM_write_bio_PrivateKey(keyText, key, nullptr, nullptr, 0, nullptr, nullptr);
  X509_free(certificate);
  EVP_PKEY_free(key);
  return {contentOf(certificateText), contentOf(keyText)};
}

void useCredentials(SSL_CTX* context) {
  const BenchCredentials& credentials = benchCredentials();
  BIO* const certificateText = BIO_new_mem_buf(credentials.certificate.data(), -1);
  BIO* const keyText = BIO_new_mem_buf(credentials.key.data(), -1);
  X509* const certificate = PEM_read_bio_X509(certificateText, nullptr, nullptr, nullptr);
  EVP_PKEY* const key = PEM_read_bio_PrivateKey(keyText, nullptr, nullptr, nullptr);
  require(SSL_CTX_use_certificate(context, certificate) == 1, "using the certificate");
  require(SSL_CTX_use_PrivateKey(context, key) == 1, "using the key");
  X509_free(certificate);
  EVP_PKEY_free(key);
  BIO_free(certificateText);
  BIO_free(keyText);
}

}  // namespace

const BenchCredentials& benchCredentials() {
  static const BenchCredentials credentials = makeCredentials();
  return credentials;
}

TlsPeer::TlsPeer(Role role) : context_(SSL_CTX_new(TLS_method())) {
  SSL_CTX_set_min_proto_version(context_, TLS1_2_VERSION);
  SSL_CTX_set_max_proto_version(context_, TLS1_2_VERSION);
  useCredentials(context_);
  ssl_ = SSL_new(context_);
  readBio_ = BIO_new(BIO_s_mem());
  writeBio_ = BIO_new(BIO_s_mem());
  SSL_set_bio(ssl_, readBio_, writeBio_);
  if (role == Role::client) {
    SSL_set_connect_state(ssl_);
  } else {
    SSL_set_accept_state(ssl_);
  }
}

TlsPeer::~TlsPeer() {
  SSL_free(ssl_);
  SSL_CTX_free(context_);
}

bool TlsPeer::handshake() { return SSL_do_handshake(ssl_) == 1; }

void TlsPeer::putCiphertext(const void* data, std::size_t size) {
  BIO_write(readBio_, data, static_cast<int>(size));
}

std::size_t TlsPeer::takeCiphertext(void* data, std::size_t room) {
  const int count = BIO_read(writeBio_, data, static_cast<int>(room));
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::vector<unsigned char> TlsPeer::takeAllCiphertext() {
  std::vector<unsigned char> bytes(BIO_ctrl_pending(writeBio_));
  bytes.resize(takeCiphertext(bytes.data(), bytes.size()));
  return bytes;
}

std::size_t TlsPeer::encrypt(const void* data, std::size_t size, void* out, std::size_t room) {
  require(SSL_write(ssl_, data, static_cast<int>(size)) == static_cast<int>(size), "enciphering");
  return takeCiphertext(out, room);
}

std::size_t TlsPeer::decrypt(const void* record, std::size_t size, void* out, std::size_t room) {
  putCiphertext(record, size);
  const int count = SSL_read(ssl_, out, static_cast<int>(room));
  require(count > 0, "deciphering");
  return static_cast<std::size_t>(count);
}

std::string TlsPeer::cipher() const { return SSL_get_cipher_name(ssl_); }
