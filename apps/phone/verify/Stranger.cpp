#include "phone/verify/Stranger.h"

#include <openssl/ec.h>

#include <stdexcept>

#include "phone/OpenSslTypes.h"

namespace phone::verify {

namespace {

constexpr long day = 24 * 60 * 60;

std::string textOf(BIO* memory) {
  char* data = nullptr;
  const long size = BIO_get_mem_data(memory, &data);
  return std::string(data, static_cast<std::size_t>(size));
}

X509Pointer signedByItself(EVP_PKEY* key) {
  X509Pointer certificate(X509_new());
  X509* const it = certificate.get();
  X509_set_version(it, 2);
  ASN1_INTEGER_set(X509_get_serialNumber(it), 1);
  X509_gmtime_adj(X509_getm_notBefore(it), -day);
  X509_gmtime_adj(X509_getm_notAfter(it), day);
  X509_set_pubkey(it, key);
  X509_NAME* const name = X509_get_subject_name(it);
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("stranger"), -1,
                             -1, 0);
  X509_set_issuer_name(it, name);
  if (X509_sign(it, key, EVP_sha256()) == 0) throw std::runtime_error("OpenSSL cannot sign a certificate");
  return certificate;
}

}  // namespace

Credentials strangerLike(const Credentials& known) {
  const KeyPointer key(EVP_EC_gen("P-256"));
  if (!key) throw std::runtime_error("OpenSSL cannot make a key");
  const BioPointer certificateText(BIO_new(BIO_s_mem()));
  const BioPointer keyText(BIO_new(BIO_s_mem()));
  PEM_write_bio_X509(certificateText.get(), signedByItself(key.get()).get());
  PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
  return {known.root, textOf(certificateText.get()), textOf(keyText.get())};
}

}  // namespace phone::verify
