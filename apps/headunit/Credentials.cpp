#include "headunit/Credentials.h"

#include <openssl/pem.h>
#include <openssl/x509.h>

#include <memory>

#include "common/InputFile.h"

namespace headunit {
namespace {

constexpr programs::InputLimits FILE_LIMITS{1 << 20};
constexpr const char* ADVICE = "; scripts/make-credentials DIR makes a complete set";

struct Free {
  void operator()(BIO* bio) const { BIO_free(bio); }
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
template <class T>
using Owned = std::unique_ptr<T, Free>;

Owned<X509> parseCertificate(const std::string& pem) {
  const Owned<BIO> source(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
  return Owned<X509>(PEM_read_bio_X509(source.get(), nullptr, nullptr, nullptr));
}

Owned<EVP_PKEY> parseKey(const std::string& pem) {
  const Owned<BIO> source(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
  char noPassphrase[] = "";  // otherwise OpenSSL asks for one on the terminal
  return Owned<EVP_PKEY>(PEM_read_bio_PrivateKey(source.get(), nullptr, nullptr, noPassphrase));
}

bool readFile(const std::string& path, std::string* text, std::string* error) {
  std::string reason = "it is empty";
  *text = programs::readInput(path, FILE_LIMITS, &reason).value_or("");
  if (text->empty()) *error = "cannot read " + path + ": " + reason + ADVICE;
  return !text->empty();
}

// Why no link can use them, in words; empty if one can.
std::string fault(const Credentials& credentials, const std::array<std::string, 3>& files) {
  const auto& [rootFile, certificateFile, keyFile] = files;
  if (!parseCertificate(credentials.root)) return rootFile + " holds no certificate";
  const Owned<X509> certificate = parseCertificate(credentials.certificate);
  if (!certificate) return certificateFile + " holds no certificate";
  const Owned<EVP_PKEY> key = parseKey(credentials.key);
  if (!key) return keyFile + " holds no private key that can be read without a passphrase";
  if (X509_check_private_key(certificate.get(), key.get()) != 1)
    return keyFile + " does not belong to " + certificateFile;
  return {};
}

}  // namespace

std::array<std::string, 3> credentialFiles(const std::string& folder) {
  return {folder + "/root.pem", folder + "/headunit.pem", folder + "/headunit.key"};
}

std::optional<Credentials> loadCredentials(const std::string& folder, std::string* error) {
  Credentials credentials;
  const std::array<std::string, 3> files = credentialFiles(folder);
  const bool complete = readFile(files[0], &credentials.root, error) &&
                        readFile(files[1], &credentials.certificate, error) &&
                        readFile(files[2], &credentials.key, error);
  if (!complete) return {};
  *error = fault(credentials, files);
  if (error->empty()) return credentials;
  *error += ADVICE;
  return {};
}

std::string doubtsAbout(const Credentials& credentials) {
  const Owned<X509> root = parseCertificate(credentials.root);
  const Owned<X509> certificate = parseCertificate(credentials.certificate);
  if (X509_cmp_current_time(X509_get0_notAfter(certificate.get())) < 0) return "headunit.pem has expired";
  if (X509_cmp_current_time(X509_get0_notBefore(certificate.get())) > 0) {
    return "headunit.pem is not valid yet; check the clock";
  }
  if (X509_verify(certificate.get(), X509_get0_pubkey(root.get())) != 1) {
    return "headunit.pem is not signed by root.pem";
  }
  return {};
}

}  // namespace headunit
