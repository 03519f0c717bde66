#include "FailingCalls.h"

#include <openssl/bio.h>
#include <openssl/conf.h>
#include <openssl/rand.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
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
std::atomic<const EventAt*> armed{nullptr};

bool isWatched(const char* name) {
  const char* const now = watched;
  return now != nullptr && strcmp(now, name) == 0;
}

/// Whether this call of `name`, which is about `number`, is to fail.
bool failsNow(const char* name, unsigned long long number = 0) {
  if (!isWatched(name)) return false;
  latest = number;
  return ++count == failure || failure == FailingCall::EVERY;
}

/// `call`, if an event can be placed there.
const char* checked(const char* call) {
  static const std::set<std::string> detours = {"sem_post",           "sem_wait",     "sched_yield",
                                                "pthread_mutex_lock", "pthread_join", "operator new"};
  if (detours.count(call) == 0) throw std::invalid_argument(call);
  return call;
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
                                                "SSL_has_pending",
                                                "SSL_CTX_set_options",
                                                "BIO_new",
                                                "BIO_read",
                                                "BIO_set_ssl_renegotiate_timeout",
                                                "X509_STORE_new",
                                                "CONF_modules_unload",
                                                "pthread_mutex_lock",
                                                "pthread_setschedparam",
                                                "sched_yield",
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

EventAt::EventAt(const char* call, std::function<void()> event, unsigned long long number)
    : name(checked(call)),
      awaited(number),
      happens([event = std::move(event)](unsigned long long) { event(); }),
      repeats(false) {
  armed = this;
}

EventAt::EventAt(const char* call, std::function<void(unsigned long long)> event)
    : name(checked(call)), awaited(ANY), happens(std::move(event)), repeats(true) {
  armed = this;
}

EventAt::~EventAt() { armed = nullptr; }

void EventAt::reached(const char* call, unsigned long long number) {
  const EventAt* now = armed;
  if (now == nullptr || now->name != call) return;
  if (now->awaited != ANY && now->awaited != number) return;
  // Disarmed first: the event makes calls of its own.
  const EventAt* none = nullptr;
  if (!armed.compare_exchange_strong(now, nullptr)) return;
  now->happens(number);
  if (now->repeats) armed.compare_exchange_strong(none, now);
}

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
  test::EventAt::reached("pthread_join", thread);
  return test::failsNow("pthread_join") ? EINVAL : __real_pthread_join(thread, result);
}

int __real_sem_wait(sem_t*);
int __wrap_sem_wait(sem_t* semaphore) {
  test::EventAt::reached("sem_wait");
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
  test::EventAt::reached("sem_post");
  return result;
}

int __real_sched_yield();
int __wrap_sched_yield() {
  test::EventAt::reached("sched_yield");
  return test::failsNow("sched_yield") ? -1 : __real_sched_yield();
}

int __real_pthread_setschedparam(pthread_t, int, const sched_param*);
int __wrap_pthread_setschedparam(pthread_t thread, int policy, const sched_param* parameters) {
  if (!test::isWatched("pthread_setschedparam"))
    return __real_pthread_setschedparam(thread, policy, parameters);
  const auto number = static_cast<unsigned long long>(policy * 1000 + parameters->sched_priority);
  return test::failsNow("pthread_setschedparam", number) ? EPERM : 0;
}

int __real_pthread_mutex_lock(pthread_mutex_t*);
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
  test::EventAt::reached("pthread_mutex_lock");
  const auto address = reinterpret_cast<std::uintptr_t>(mutex);
  return test::failsNow("pthread_mutex_lock", address) ? EINVAL : __real_pthread_mutex_lock(mutex);
}

// operator new(std::size_t), as the compilers call it.
void* __real__Znwm(std::size_t);
void* __wrap__Znwm(std::size_t size) {
  test::EventAt::reached("operator new", size);
  return __real__Znwm(size);
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

int __real_SSL_has_pending(const SSL*);
int __wrap_SSL_has_pending(const SSL* ssl) {
  return test::failsNow("SSL_has_pending") ? 1 : __real_SSL_has_pending(ssl);
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
