#include "FixedCredentials.h"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include "FixedRandom.h"

namespace {

std::string contentOf(BIO* memory) {
  char* data = nullptr;
  const long size = BIO_get_mem_data(memory, &data);
  std::string text(data, static_cast<std::size_t>(size));
  BIO_free(memory);
  return text;
}

std::string pemOf(X509* certificate) {
  BIO* const text = BIO_new(BIO_s_mem());
  PEM_write_bio_X509(text, certificate);
  return contentOf(text);
}

std::string pemOf(EVP_PKEY* key) {
  BIO* const text = BIO_new(BIO_s_mem());
  PEM_write_bio_PrivateKey(text, key, nullptr, nullptr, 0, nullptr, nullptr);
  return contentOf(text);
}

X509* signedCertificate(const char* subject, EVP_PKEY* subjectKey, const char* issuer, EVP_PKEY* issuerKey) {
  const auto setName = [](X509_NAME* name, const char* text) {
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>(text), -1, -1,
                               0);
  };
  X509* const certificate = X509_new();
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
  ASN1_TIME_set_string(X509_getm_notBefore(certificate), "20250101000000Z");
  ASN1_TIME_set_string(X509_getm_notAfter(certificate), "20991231000000Z");
  X509_set_pubkey(certificate, subjectKey);
  setName(X509_get_subject_name(certificate), subject);
  X509_NAME* const issuerName = X509_NAME_new();
  setName(issuerName, issuer);
  X509_set_issuer_name(certificate, issuerName);
  X509_NAME_free(issuerName);
  X509_sign(certificate, issuerKey, EVP_sha256());
  return certificate;
}

FixedCredentials make() {
  FixedRandom::drawsFor(FixedRandom::Side::credentials);
  EVP_PKEY* const rootKey = EVP_EC_gen("P-256");
  EVP_PKEY* const key = EVP_EC_gen("P-256");
  X509* const root = signedCertificate("root", rootKey, "root", rootKey);
  X509* const certificate = signedCertificate("side", key, "root", rootKey);
  FixedCredentials result{pemOf(root), pemOf(certificate), pemOf(key)};
  X509_free(root);
  X509_free(certificate);
  EVP_PKEY_free(rootKey);
  EVP_PKEY_free(key);
  return result;
}

}  // namespace

const FixedCredentials& fixedCredentials() {
  static const FixedCredentials credentials = make();
  return credentials;
}
