#include "SslLocks.h"

#include <openssl/crypto.h>

#include <cassert>

#include "Mutex.h"

namespace {

Mutex* sslMutexes;

// Before any other code runs, constructors of other files included. Never freed: OpenSSL may still be at work
// on some thread while the process ends.
__attribute__((constructor(101))) void createLocks() {
  sslMutexes = new Mutex[CRYPTO_num_locks()];
  opensslConfigurationLock = new Mutex();
}

}  // namespace

Mutex* opensslConfigurationLock;

void sslLockingFunction(int mode, int n, const char*, int) {
  assert(sslMutexes != __null);
  if ((mode & CRYPTO_LOCK) != 0) {
    sslMutexes[n].lock();
  } else {
    sslMutexes[n].unlock();
  }
}
