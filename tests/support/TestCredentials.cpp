#include "TestCredentials.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>

namespace test {
namespace {

template <class T, void (*release)(T*)>
struct Release {
  void operator()(T* object) const { release(object); }
};
using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY, EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509, X509_free>>;
using Memory = std::unique_ptr<BIO, Release<BIO, BIO_free_all>>;

constexpr long HOUR = 60 * 60;
constexpr long DAY = 24 * HOUR;

void require(bool done) {
  if (!done) throw std::runtime_error("OpenSSL could not make the test credentials");
}

struct Issuer {
  Key key;
  Certificate certificate;
};

std::string text(const Memory& memory) {
  char* data = nullptr;
  const long size = BIO_get_mem_data(memory.get(), &data);
  return std::string(data, static_cast<std::size_t>(size));
}

std::string pem(const Certificate& certificate) {
  const Memory memory(BIO_new(BIO_s_mem()));
  require(PEM_write_bio_X509(memory.get(), certificate.get()) == 1);
  return text(memory);
}

std::string pem(const Key& key) {
  const Memory memory(BIO_new(BIO_s_mem()));
  require(PEM_write_bio_PrivateKey(memory.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1);
  return text(memory);
}

Key makeKey() {
  Key key(EVP_EC_gen("P-256"));
  require(key != nullptr);
  return key;
}

void addExtension(X509* certificate, int which, const char* value) {
  X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, nullptr, which, value);
  require(extension != nullptr && X509_add_ext(certificate, extension, -1) == 1);
  X509_EXTENSION_free(extension);
}

/// Signed by `issuer`, or by itself without one; `from` and `until` count in seconds from now. `mayIssue`: it
/// may sign others itself.
Certificate makeCertificate(const char* name, const Key& key, const Issuer* issuer, bool mayIssue, long from,
                            long until) {
  static long serial = 0;
  Certificate made(X509_new());
  X509* const it = made.get();
  require(X509_set_version(it, 2) == 1);
  require(ASN1_INTEGER_set(X509_get_serialNumber(it), ++serial) == 1);
  require(X509_gmtime_adj(X509_getm_notBefore(it), from) != nullptr);
  require(X509_gmtime_adj(X509_getm_notAfter(it), until) != nullptr);
  require(X509_set_pubkey(it, key.get()) == 1);
  X509_NAME* const subject = X509_get_subject_name(it);
  const auto* const commonName = reinterpret_cast<const unsigned char*>(name);
  require(X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC, commonName, -1, -1, 0) == 1);
  require(X509_set_issuer_name(it, issuer ? X509_get_subject_name(issuer->certificate.get()) : subject) == 1);
  addExtension(it, NID_basic_constraints, mayIssue ? "critical,CA:TRUE" : "critical,CA:FALSE");
  require(X509_sign(it, issuer ? issuer->key.get() : key.get(), EVP_sha256()) > 0);
  return made;
}

/// Signed by `above`, or by itself without one.
Issuer makeIssuer(const char* name, const Issuer* above = nullptr) {
  Key key = makeKey();
  Certificate certificate = makeCertificate(name, key, above, true, -2 * 365 * DAY, 2 * 365 * DAY);
  return {std::move(key), std::move(certificate)};
}

Identity makeIdentity(const char* name, const Issuer& issuer, long from = -HOUR, long until = DAY) {
  const Key key = makeKey();
  return {pem(makeCertificate(name, key, &issuer, false, from, until)), pem(key)};
}

TestCredentials make() {
  const Issuer root = makeIssuer("Test root");
  const Issuer issuer = makeIssuer("Test issuer", &root);
  const Issuer stranger = makeIssuer("Stranger root");
  TestCredentials result;
  result.expiry = time(nullptr) - DAY;
  result.root = pem(root.certificate);
  result.phone = makeIdentity("Test phone", root);
  result.headUnit = makeIdentity("Test head unit", root);
  result.expiredPhone = makeIdentity("Expired phone", root, -30 * DAY, -DAY);
  result.futurePhone = makeIdentity("Future phone", root, 365 * DAY, 400 * DAY);
  result.incompletePhone = makeIdentity("Indirect phone", issuer);
  result.indirectPhone = result.incompletePhone;
  result.indirectPhone.certificate += pem(issuer.certificate);
  result.strangerRoot = pem(stranger.certificate);
  result.strangerPhone = makeIdentity("Stranger phone", stranger);
  result.strangerHeadUnit = makeIdentity("Stranger head unit", stranger);
  result.otherKey = pem(makeKey());
  return result;
}

}  // namespace

const TestCredentials& credentials() {
  static const TestCredentials made = make();
  return made;
}

}  // namespace test
