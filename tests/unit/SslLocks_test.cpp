#include "SslLocks.h"

#include <gtest/gtest.h>
#include <openssl/crypto.h>

#include <cassert>

#include "Mutex.h"

// The same locks, in a program that is loaded without creating them.
namespace neverCreated {
#define constructor(priority) unused
#include "../../src/SslLocks.cpp"
#undef constructor
}  // namespace neverCreated

namespace test {
namespace {

TEST(SslLocksDeathTest, StopTheProcessWhereTheyWereNeverCreated) {
  EXPECT_DEATH(neverCreated::sslLockingFunction(CRYPTO_LOCK, 0, "", 0), "sslMutexes != __null");
  EXPECT_DEATH(neverCreated::sslLockingFunction(CRYPTO_UNLOCK, 0, "", 0), "sslMutexes != __null");
}

TEST(SslLocksTest, AreThereBeforeAnyTestRuns) {
  ASSERT_NE(opensslConfigurationLock, nullptr);
  sslLockingFunction(CRYPTO_LOCK, 0, "", 0);
  sslLockingFunction(CRYPTO_UNLOCK, 0, "", 0);
}

}  // namespace
}  // namespace test
