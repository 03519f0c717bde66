#include "FailingCalls.h"

#include <openssl/bio.h>
#include <openssl/conf.h>
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
#include <utility>

namespace test {
namespace {

std::atomic<const char*> watched{nullptr};  // none: nothing fails
std::atomic<int> failure;
std::atomic<int> count;
std::atomic<unsigned long long> latest;
std::atomic<const std::function<void()>*> eventAtPost{nullptr};

/// Whether this call of `name`, which is about `number`, is to fail.
bool failsNow(const char* name, unsigned long long number = 0) {
  const char* const now = watched;
  if (now == nullptr || strcmp(now, name) != 0) return false;
  latest = number;
  return ++count == failure || failure == FailingCall::EVERY;
}

}  // namespace

FailingCall::FailingCall(const char* name, int which) {
  static const std::set<std::string> detours = {"pthread_create",
                                                "pthread_join",
                                                "RAND_status",
                                                "SSL_CTX_new",
                                                "SSL_new",
                                                "SSL_check_private_key",
                                                "SSL_do_handshake",
                                                "SSL_CTX_set_options",
                                                "BIO_new",
                                                "BIO_read",
                                                "BIO_set_ssl_renegotiate_timeout",
                                                "X509_STORE_new",
                                                "CONF_modules_unload",
                                                "sem_post",
                                                "sem_wait"};
  if (detours.count(name) == 0) throw std::invalid_argument(name);
  failure = which;
  count = 0;
  latest = 0;
  watched = name;
}

FailingCall::~FailingCall() { watched = nullptr; }

int FailingCall::calls() const { return count; }

unsigned long long FailingCall::number() const { return latest; }

EventAtPost::EventAtPost(std::function<void()> event) : happens(std::move(event)) { eventAtPost = &happens; }

EventAtPost::~EventAtPost() { eventAtPost = nullptr; }

}  // namespace test

// What the linker's --wrap option puts in place of the platform's calls.
extern "C" {

int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                          void* argument) {
  return test::failsNow("pthread_create") ? EAGAIN
                                          : __real_pthread_create(thread, attributes, body, argument);
}

int __real_pthread_join(pthread_t, void**);
int __wrap_pthread_join(pthread_t thread, void** result) {
  return test::failsNow("pthread_join") ? EINVAL : __real_pthread_join(thread, result);
}

int __real_sem_wait(sem_t*);
int __wrap_sem_wait(sem_t* semaphore) {
  int value = 0;
  sem_getvalue(semaphore, &value);
  if (!test::failsNow("sem_wait", static_cast<unsigned int>(value))) return __real_sem_wait(semaphore);
  errno = EINTR;
  return -1;
}

int __real_sem_post(sem_t*);
int __wrap_sem_post(sem_t* semaphore) {
  if (test::failsNow("sem_post")) {
    errno = EOVERFLOW;
    return -1;
  }
  const int result = __real_sem_post(semaphore);
  if (const std::function<void()>* const event = test::eventAtPost.exchange(nullptr)) (*event)();
  return result;
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

int __real_BIO_read(BIO*, void*, int);
int __wrap_BIO_read(BIO* bio, void* data, int length) {
  if (!test::failsNow("BIO_read")) return __real_BIO_read(bio, data, length);
  BIO_set_retry_read(bio);
  return -1;
}

// BIO_set_ssl_renegotiate_timeout is a macro for one of this call's commands.
long __real_BIO_ctrl(BIO*, int, long, void*);
long __wrap_BIO_ctrl(BIO* bio, int command, long number, void* argument) {
  if (command == BIO_C_SET_SSL_RENEGOTIATE_TIMEOUT &&
      test::failsNow("BIO_set_ssl_renegotiate_timeout", static_cast<unsigned long>(number))) {
    return 0;
  }
  return __real_BIO_ctrl(bio, command, number, argument);
}

uint64_t __real_SSL_CTX_set_options(SSL_CTX*, uint64_t);
uint64_t __wrap_SSL_CTX_set_options(SSL_CTX* context, uint64_t options) {
  return test::failsNow("SSL_CTX_set_options", options) ? 0 : __real_SSL_CTX_set_options(context, options);
}

int __real_SSL_do_handshake(SSL*);
int __wrap_SSL_do_handshake(SSL* ssl) {
  const int result = __real_SSL_do_handshake(ssl);
  return test::failsNow("SSL_do_handshake") ? 0 : result;
}

void __real_CONF_modules_unload(int);
void __wrap_CONF_modules_unload(int all) {
  if (!test::failsNow("CONF_modules_unload")) __real_CONF_modules_unload(all);
}

X509_STORE* __real_X509_STORE_new();
X509_STORE* __wrap_X509_STORE_new() {
  return test::failsNow("X509_STORE_new") ? nullptr : __real_X509_STORE_new();
}
}
