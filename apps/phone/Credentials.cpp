#include "phone/Credentials.h"

#include <utility>

#include "common/InputFile.h"
#include "phone/OpenSslTypes.h"

namespace phone {

namespace {

BioPointer overText(const std::string& text) {
  return BioPointer(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

struct FreeStack {
  void operator()(STACK_OF(X509) * stack) const { sk_X509_free(stack); }
};

// A terminal must never be asked for a passphrase in the middle of a link.
int noPassphrase(char*, int, int, void*) { return -1; }

bool readFile(const std::string& path, std::string* text, std::string* error) {
  programs::InputLimits limits;
  limits.bytes = 1 << 20;
  std::string reason;
  auto read = programs::readInput(path, limits, &reason);
  if (read) return *text = std::move(*read), true;
  *error = "cannot read " + path + ": " + reason +
           "; make a set of credentials with scripts/make-credentials, or name its folder with --credentials";
  return false;
}

bool isUsable(const Credentials& credentials, const std::string& folder, std::string* error) {
  const std::string advice = "; make a fresh set with scripts/make-credentials";
  if (readCertificates(credentials.root).empty()) {
    *error = folder + "/root.pem holds no certificate" + advice;
  } else if (readCertificates(credentials.certificate).empty()) {
    *error = folder + "/phone.pem holds no certificate" + advice;
  } else if (!readKey(credentials.key)) {
    *error = folder + "/phone.key holds no private key that can be read without a passphrase" + advice;
  } else if (X509_check_private_key(readCertificates(credentials.certificate)[0].get(),
                                    readKey(credentials.key).get()) != 1) {
    *error = folder + "/phone.key does not belong to " + folder + "/phone.pem" + advice;
  }
  ERR_clear_error();
  return error->empty();
}

}  // namespace

std::vector<X509Pointer> readCertificates(const std::string& pem) {
  std::vector<X509Pointer> certificates;
  const BioPointer text = overText(pem);
  while (X509Pointer one{PEM_read_bio_X509(text.get(), nullptr, noPassphrase, nullptr)}) {
    certificates.push_back(std::move(one));
  }
  ERR_clear_error();
  return certificates;
}

KeyPointer readKey(const std::string& pem) {
  KeyPointer key(PEM_read_bio_PrivateKey(overText(pem).get(), nullptr, noPassphrase, nullptr));
  ERR_clear_error();
  return key;
}

std::array<std::string, 3> credentialFiles(const std::string& folder) {
  return {folder + "/root.pem", folder + "/phone.pem", folder + "/phone.key"};
}

std::optional<Credentials> loadCredentials(const std::string& folder, std::string* error) {
  error->clear();
  const auto [root, certificate, key] = credentialFiles(folder);
  Credentials credentials;
  if (!readFile(root, &credentials.root, error) || !readFile(certificate, &credentials.certificate, error) ||
      !readFile(key, &credentials.key, error) || !isUsable(credentials, folder, error)) {
    return std::nullopt;
  }
  return credentials;
}

std::string doubtsAbout(const Credentials& credentials) {
  const std::vector<X509Pointer> roots = readCertificates(credentials.root);
  const std::vector<X509Pointer> own = readCertificates(credentials.certificate);
  if (roots.empty() || own.empty())
    return "there is no root certificate or no certificate of the phone's own";

  const StorePointer store(X509_STORE_new());
  for (const X509Pointer& root : roots) X509_STORE_add_cert(store.get(), root.get());
  const std::unique_ptr<STACK_OF(X509), FreeStack> chain(sk_X509_new_null());
  for (const X509Pointer& one : own) sk_X509_push(chain.get(), one.get());

  const StoreContextPointer context(X509_STORE_CTX_new());
  X509_STORE_CTX_init(context.get(), store.get(), own[0].get(), chain.get());
  const bool good = X509_verify_cert(context.get()) == 1;
  const int code = X509_STORE_CTX_get_error(context.get());
  ERR_clear_error();
  if (good) return {};
  return std::string("the phone's own certificate does not hold against the root: ") +
         X509_verify_cert_error_string(code);
}

}  // namespace phone
