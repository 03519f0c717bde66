// SslWrapper's half that sets OpenSSL up and tears it down.

#include <openssl/bio.h>
#include <openssl/conf.h>
#include <openssl/engine.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/ssl.h>

#include "Log.h"
#include "Mutex.h"
#include "OpenSslState.h"
#include "RecordPlace.h"
#include "SslLocks.h"
#include "SslWrapper.h"

namespace {

constexpr long RENEGOTIATE_AFTER_SECONDS = 365L * 24 * 60 * 60;  // in effect never during a link

bool fail(const char* reason) {
  print_critical_i("%s", reason);
  return false;
}

X509* parseCertificate(const std::string& pem) {
  BIO* const source = BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()));
  X509* const certificate = PEM_read_bio_X509_AUX(source, nullptr, nullptr, nullptr);
  BIO_free(source);
  return certificate;
}

EVP_PKEY* parsePrivateKey(const std::string& pem) {
  BIO* const source = BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()));
  EVP_PKEY* const key = PEM_read_bio_PrivateKey(source, nullptr, nullptr, nullptr);
  BIO_free(source);
  return key;
}

}  // namespace

bool SslWrapper::init(const std::string& rootCertificatePem, const std::string& clientCertificatePem,
                      const std::string& privateKeyPem) {
  // First of all, because later calls would read the configuration file that the environment may name.
  OPENSSL_init_ssl(OPENSSL_INIT_NO_LOAD_CONFIG, nullptr);
  SSL_load_error_strings();
  SSL_library_init();
  OPENSSL_add_all_algorithms_noconf();
  forgetOpenSslErrors();
  if (RAND_status() != 1) return fail("[LHU] No /dev/urandom - Must seed RNG manually.");
  CRYPTO_set_locking_callback(sslLockingFunction);

  // Missing or damaged ones come to light where they are used.
  rootCertificate = parseCertificate(rootCertificatePem);
  clientCertificate = parseCertificate(clientCertificatePem);
  privateKey = parsePrivateKey(privateKeyPem);

  if (!createContext() || !createConnection() || !createCertificateStore()) return false;
  state = SSL_WRAPPER_READY;
  return true;
}

bool SslWrapper::createContext() {
  {
    Autolock lock(opensslConfigurationLock);
    sslContext = SSL_CTX_new(TLSv1_2_client_method());
  }
  if (sslContext == nullptr) return fail("[LHU] Failed to allocate SSL_CTX.");
  if (SSL_CTX_use_certificate(sslContext, clientCertificate) != 1) {
    return fail("[LHU] Failed to set client certificate.");
  }
  if (SSL_CTX_use_PrivateKey(sslContext, privateKey) != 1) return fail("[LHU] Failed to set private key.");
  SSL_CTX_set_options(sslContext, SSL_OP_NO_SSLv2 | SSL_OP_NO_SSLv3 | SSL_OP_NO_TLSv1 | SSL_OP_SINGLE_DH_USE |
                                      SSL_OP_SINGLE_ECDH_USE | SSL_OP_NO_COMPRESSION);
  return true;
}

bool SslWrapper::createConnection() {
  place = new RecordPlace();
  ssl = SSL_new(sslContext);
  if (ssl == nullptr) return fail("[LHU] Failed to allocate SSL.");
  if (SSL_check_private_key(ssl) != 1) return fail("[LHU] SSL check private key failed!");
  readBio = BIO_new(BIO_s_mem());
  if (readBio == nullptr) return fail("[LHU] Failed to allocate read bio.");
  writeBio = BIO_new(RecordPlace::memoryBio());
  if (writeBio == nullptr) return fail("[LHU] Failed to allocate write bio.");
  sslBio = BIO_new(BIO_f_ssl());
  if (sslBio == nullptr) return fail("[LHU] Failed to create filter bio.");
  SSL_set_bio(ssl, readBio, writeBio);
  BIO_set_ssl(sslBio, ssl, BIO_NOCLOSE);
  BIO_set_ssl_renegotiate_timeout(sslBio, RENEGOTIATE_AFTER_SECONDS);
  SSL_set_connect_state(ssl);
  return true;
}

bool SslWrapper::createCertificateStore() {
  certificateStore = X509_STORE_new();
  if (certificateStore == nullptr) return fail("[LHU] Failed to allocate x509 store.");
  if (X509_STORE_add_cert(certificateStore, rootCertificate) != 1) {
    return fail("[LHU] Failed to add root certificate.");
  }
  X509_STORE_set_flags(certificateStore, 0);
  return true;
}

void SslWrapper::shutdown() {
  if (ssl != nullptr) {
    if (sslBio != nullptr) BIO_free_all(sslBio);
    SSL_set_bio(ssl, nullptr, nullptr);
    SSL_free(ssl);
  }
  if (ssl == nullptr || sslBio == nullptr) {  // `ssl` never took them over
    if (readBio != nullptr) BIO_free(readBio);
    if (writeBio != nullptr) BIO_free(writeBio);
  }
  delete place;
  if (sslContext != nullptr) SSL_CTX_free(sslContext);
  if (certificateStore != nullptr) X509_STORE_free(certificateStore);
  if (rootCertificate != nullptr) X509_free(rootCertificate);
  if (clientCertificate != nullptr) X509_free(clientCertificate);
  if (privateKey != nullptr) EVP_PKEY_free(privateKey);

  Autolock lock(opensslConfigurationLock);
  CONF_modules_free();
  ENGINE_cleanup();
  CONF_modules_unload(1);
  EVP_cleanup();
  CRYPTO_cleanup_all_ex_data();
  ERR_remove_thread_state(nullptr);
  forgetOpenSslErrors();
  ERR_free_strings();
}
