#ifndef PHONE_OPENSSLTYPES_H
#define PHONE_OPENSSLTYPES_H

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <memory>
#include <string>
#include <vector>

namespace phone {

template <auto function>
struct Freed {
  template <class Pointee>
  void operator()(Pointee* pointee) const {
    function(pointee);
  }
};
using BioPointer = std::unique_ptr<BIO, Freed<BIO_free_all>>;
using X509Pointer = std::unique_ptr<X509, Freed<X509_free>>;
using KeyPointer = std::unique_ptr<EVP_PKEY, Freed<EVP_PKEY_free>>;
using StorePointer = std::unique_ptr<X509_STORE, Freed<X509_STORE_free>>;
using StoreContextPointer = std::unique_ptr<X509_STORE_CTX, Freed<X509_STORE_CTX_free>>;
using SslContextPointer = std::unique_ptr<SSL_CTX, Freed<SSL_CTX_free>>;
using SslPointer = std::unique_ptr<SSL, Freed<SSL_free>>;

/// All certificates of a PEM text, in its order; none if it is no such text.
std::vector<X509Pointer> readCertificates(const std::string& pem);
/// The private key of a PEM text; null if it is none, or asks for a passphrase.
KeyPointer readKey(const std::string& pem);

}  // namespace phone

#endif
