#include "FailingCalls.h"

#include <openssl/bio.h>
#include <openssl/rand.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <set>
#include <stdexcept>
#include <string>

namespace test {
namespace {

std::atomic<const char*> watched{nullptr};  // none: nothing fails
std::atomic<int> failure;
std::atomic<int> count;

/// Whether this call of `name` is the one to fail.
bool failsNow(const char* name) {
  const char* const now = watched;
  return now != nullptr && strcmp(now, name) == 0 && ++count == failure;
}

}  // namespace

FailingCall::FailingCall(const char* name, int which) {
  static const std::set<std::string> detours = {
      "pthread_create",        "RAND_status", "SSL_CTX_new",    "SSL_new",
      "SSL_check_private_key", "BIO_new",     "X509_STORE_new", "sem_post"};
  if (detours.count(name) == 0) throw std::invalid_argument(name);
  failure = which;
  count = 0;
  watched = name;
}

FailingCall::~FailingCall() { watched = nullptr; }

int FailingCall::calls() const { return count; }

}  // namespace test

// What the linker's --wrap option puts in place of the platform's calls.
extern "C" {

int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                          void* argument) {
  return test::failsNow("pthread_create") ? EAGAIN
                                          : __real_pthread_create(thread, attributes, body, argument);
}

int __real_sem_post(sem_t*);
int __wrap_sem_post(sem_t* semaphore) {
  if (!test::failsNow("sem_post")) return __real_sem_post(semaphore);
  errno = EOVERFLOW;
  return -1;
}

int __real_RAND_status();
int __wrap_RAND_status() { return test::failsNow("RAND_status") ? 0 : __real_RAND_status(); }

SSL_CTX* __real_SSL_CTX_new(const SSL_METHOD*);
SSL_CTX* __wrap_SSL_CTX_new(const SSL_METHOD* method) {
  return test::failsNow("SSL_CTX_new") ? nullptr : __real_SSL_CTX_new(method);
}

SSL* __real_SSL_new(SSL_CTX*);
SSL* __wrap_SSL_new(SSL_CTX* context) {
  return test::failsNow("SSL_new") ? nullptr : __real_SSL_new(context);
}

int __real_SSL_check_private_key(const SSL*);
int __wrap_SSL_check_private_key(const SSL* ssl) {
  return test::failsNow("SSL_check_private_key") ? 0 : __real_SSL_check_private_key(ssl);
}

BIO* __real_BIO_new(const BIO_METHOD*);
BIO* __wrap_BIO_new(const BIO_METHOD* type) {
  return test::failsNow("BIO_new") ? nullptr : __real_BIO_new(type);
}

X509_STORE* __real_X509_STORE_new();
X509_STORE* __wrap_X509_STORE_new() {
  return test::failsNow("X509_STORE_new") ? nullptr : __real_X509_STORE_new();
}
}
