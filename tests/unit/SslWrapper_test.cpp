#include "SslWrapper.h"

#include <gmock/gmock.h>
#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/ssl.h>

#include <ctime>

#include "FailingCalls.h"
#include "LogCapture.h"
#include "ProcessMemory.h"
#include "SecureLink.h"
#include "SslLocks.h"
#include "TestCredentials.h"

// Setting up, judging the peer and tearing down. The pipelines are in SslPipeline_test.cpp.

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

struct SslWrapperTest : testing::Test {
  LogCapture log;
  SslWrapper wrapper;
  const TestCredentials& known = credentials();

  ~SslWrapperTest() override { wrapper.shutdown(); }  // frees what a failed init left; a leak would show

  bool init() { return wrapper.init(known.root, known.headUnit.certificate, known.headUnit.key); }
  void expectFailure(const char* line) {
    EXPECT_THAT(log.all(), ElementsAre(std::string("critical ") + line));
    EXPECT_EQ(wrapper.currentState(), 0);
  }
};

TEST_F(SslWrapperTest, IsReadyAfterInit) {
  EXPECT_EQ(wrapper.currentState(), 0);
  EXPECT_TRUE(init());
  EXPECT_EQ(wrapper.currentState(), SSL_WRAPPER_READY);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(SslWrapperTest, AClientCertificateThatIsNoneIsRefused) {
  EXPECT_FALSE(wrapper.init(known.root, "no certificate", known.headUnit.key));
  expectFailure("[LHU] Failed to set client certificate.");
}

TEST_F(SslWrapperTest, AnEmptyClientCertificateIsRefused) {
  EXPECT_FALSE(wrapper.init(known.root, "", known.headUnit.key));
  expectFailure("[LHU] Failed to set client certificate.");
}

TEST_F(SslWrapperTest, APrivateKeyThatIsNoneIsRefused) {
  EXPECT_FALSE(wrapper.init(known.root, known.headUnit.certificate, "no key"));
  expectFailure("[LHU] Failed to set private key.");
}

TEST_F(SslWrapperTest, APrivateKeyOfAnotherCertificateIsRefused) {
  EXPECT_FALSE(wrapper.init(known.root, known.headUnit.certificate, known.otherKey));
  expectFailure("[LHU] Failed to set private key.");
}

TEST_F(SslWrapperTest, ARootCertificateThatIsNoneIsRefusedLast) {
  EXPECT_FALSE(wrapper.init("no certificate", known.headUnit.certificate, known.headUnit.key));
  expectFailure("[LHU] Failed to add root certificate.");
}

TEST_F(SslWrapperTest, WithoutRandomNumbersInitFails) {
  const FailingCall failing("RAND_status");
  EXPECT_FALSE(init());
  expectFailure("[LHU] No /dev/urandom - Must seed RNG manually.");
}

TEST_F(SslWrapperTest, WithoutAContextInitFails) {
  const FailingCall failing("SSL_CTX_new");
  EXPECT_FALSE(init());
  expectFailure("[LHU] Failed to allocate SSL_CTX.");
}

TEST_F(SslWrapperTest, WithoutAConnectionInitFails) {
  const FailingCall failing("SSL_new");
  EXPECT_FALSE(init());
  expectFailure("[LHU] Failed to allocate SSL.");
}

TEST_F(SslWrapperTest, AKeyThatDoesNotPassTheCheckIsRefused) {
  const FailingCall failing("SSL_check_private_key");
  EXPECT_FALSE(init());
  expectFailure("[LHU] SSL check private key failed!");
}

TEST_F(SslWrapperTest, WithoutAReadBioInitFails) {
  const FailingCall failing("BIO_new", 1);
  EXPECT_FALSE(init());
  expectFailure("[LHU] Failed to allocate read bio.");
}

TEST_F(SslWrapperTest, WithoutAWriteBioInitFails) {
  const FailingCall failing("BIO_new", 2);
  EXPECT_FALSE(init());
  expectFailure("[LHU] Failed to allocate write bio.");
}

TEST_F(SslWrapperTest, WithoutAFilterBioInitFails) {
  const FailingCall failing("BIO_new", 3);
  EXPECT_FALSE(init());
  expectFailure("[LHU] Failed to create filter bio.");
}

TEST_F(SslWrapperTest, WithoutACertificateStoreInitFails) {
  const FailingCall failing("X509_STORE_new");
  EXPECT_FALSE(init());
  expectFailure("[LHU] Failed to allocate x509 store.");
}

TEST_F(SslWrapperTest, WithoutInitNoCiphertextIsTaken) {
  Bytes record(5, 0);
  EXPECT_LT(wrapper.decryptionPipelineEnqueue(record.data(), 5), 1);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Failed to write data to the read bio!"));
  EXPECT_EQ(wrapper.decryptionPipelinePending(), 0);
}

TEST_F(SslWrapperTest, ShutdownWithoutInitStillCleansOpenSslUp) {
  const FailingCall cleanUps("CONF_modules_unload", FailingCall::NEVER);
  SslWrapper untouched;
  untouched.shutdown();
  EXPECT_EQ(cleanUps.calls(), 1);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(SslWrapperTest, AsksForTls12WithoutCompression) {
  const FailingCall options("SSL_CTX_set_options", FailingCall::NEVER);
  EXPECT_TRUE(init());
  EXPECT_EQ(options.calls(), 1);
  // Three of them are 0 where the platform no longer knows how to do otherwise.
  EXPECT_EQ(options.number(), SSL_OP_NO_SSLv2 | SSL_OP_NO_SSLv3 | SSL_OP_NO_TLSv1 | SSL_OP_SINGLE_DH_USE |
                                  SSL_OP_SINGLE_ECDH_USE | SSL_OP_NO_COMPRESSION);
  EXPECT_EQ(options.number() & 0x06020000U, 0x06020000U) << "no SSL 3, no TLS 1.0, no compression";
}

TEST_F(SslWrapperTest, RenegotiatesAfterAYear) {
  const FailingCall timeouts("BIO_set_ssl_renegotiate_timeout", FailingCall::NEVER);
  EXPECT_TRUE(init());
  EXPECT_EQ(timeouts.calls(), 1);
  EXPECT_EQ(timeouts.number(), 31536000U);
}

TEST_F(SslWrapperTest, ShutdownOfOneLeavesOthersAndLaterOnesUsable) {
  EXPECT_TRUE(init());
  {
    SslWrapper other;
    EXPECT_TRUE(other.init(known.root, known.headUnit.certificate, known.headUnit.key));
    other.shutdown();
  }
  IoBuffer out;
  EXPECT_LT(wrapper.handshake(nullptr, 0, &out), 0);
  EXPECT_GT(out.size(), 2U);
}

TEST_F(SslWrapperTest, TheFirstHandshakeStepMakesAWholeMessage) {
  ASSERT_TRUE(init());
  IoBuffer out;
  out.resize(5);
  EXPECT_EQ(wrapper.handshake(nullptr, 0, &out), -1);
  EXPECT_EQ(out.start, 0U);
  EXPECT_EQ(out.capacity, out.end);
  EXPECT_EQ(part(Bytes(out.content(), out.size()), 0, 4), bytes("00 03 16 03"));
  EXPECT_EQ(wrapper.currentState(), SSL_WRAPPER_READY);
}

TEST_F(SslWrapperTest, AStepWithNothingToSendLeavesTheOutputAlone) {
  ASSERT_TRUE(init());
  IoBuffer out;
  wrapper.handshake(nullptr, 0, &out);
  IoBuffer second;
  EXPECT_EQ(wrapper.handshake(nullptr, 0, &second), -1);
  EXPECT_EQ(second.data, nullptr);
}

TEST_F(SslWrapperTest, BytesThatAreNoTlsFailTheHandshakeForGood) {
  ASSERT_TRUE(init());
  IoBuffer out;
  wrapper.handshake(nullptr, 0, &out);
  log.clear();
  IoBuffer second;
  Bytes noise = filled(50, 0x55);
  EXPECT_EQ(wrapper.handshake(noise.data(), 50, &second), -1);
  EXPECT_EQ(wrapper.currentState(), SSL_WRAPPER_FAILED);
  EXPECT_EQ(second.data, nullptr) << "also where an alert waits to be sent";
  EXPECT_THAT(log.all(), ElementsAre(MatchesRegex("critical \\[LHU\\] ssl state=.*, ret: -1, err: 1")));
}

TEST_F(SslWrapperTest, GigabytesThatWereOnlyAnnouncedFailTheHandshakeWithoutACopy) {
  ASSERT_TRUE(init());
  IoBuffer out;
  wrapper.handshake(nullptr, 0, &out);
  constexpr unsigned int SIZE = 0x7FFFFFFF;
  IoBuffer flight;
  flight.data = static_cast<unsigned char*>(calloc(SIZE, 1));
  if (flight.data == nullptr) GTEST_SKIP() << "the system lends no such address space";
  [[maybe_unused]] const long before = memoryKilobytes("VmHWM");
  wrapper.handshake(flight.data, SIZE, &out);
  EXPECT_EQ(wrapper.currentState(), SSL_WRAPPER_FAILED);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // whose own book-keeping counts too
  EXPECT_LT(memoryKilobytes("VmHWM") - before, 8 * 1024);
#endif
}

TEST_F(SslWrapperTest, HandshakeMessagesBehindAFailedHandshakeDoNotPileUp) {
  ASSERT_TRUE(init());
  IoBuffer out;
  Bytes noise = filled(1 << 20, 0x55);
  wrapper.handshake(noise.data(), 1 << 20, &out);
  ASSERT_EQ(wrapper.currentState(), SSL_WRAPPER_FAILED);
  wrapper.handshake(noise.data(), 1 << 20, &out);
  [[maybe_unused]] const long before = memoryKilobytes("VmHWM");
  for (int i = 0; i < 20; ++i) wrapper.handshake(noise.data(), 1 << 20, &out);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // whose own book-keeping counts too
  EXPECT_LT(memoryKilobytes("VmHWM") - before, 2 * 1024);
#endif
}

TEST_F(SslWrapperTest, AStaleErrorOfTheHostDoesNotFailTheHandshake) {
  ASSERT_TRUE(init());
  ERR_raise(ERR_LIB_USER, 1);
  IoBuffer out;
  wrapper.handshake(nullptr, 0, &out);
  EXPECT_NE(wrapper.currentState(), SSL_WRAPPER_FAILED);
  EXPECT_GT(out.size(), 2U);
}

TEST(SslLocksTest, LockAndUnlockTheNumberedMutex) {
  sslLockingFunction(CRYPTO_LOCK, 0, "", 0);
  sslLockingFunction(CRYPTO_UNLOCK, 0, "", 0);
  sslLockingFunction(CRYPTO_LOCK, 0, "", 0);  // would block for ever if the unlock had failed
  sslLockingFunction(CRYPTO_UNLOCK, 0, "", 0);
}

/// The verdict on a phone, and the line that tells it.
struct PeerVerdict {
  bool accepted;
  std::string line;
};

PeerVerdict verdictOn(const Identity& phone, const time_t* when = nullptr,
                      const std::string& root = credentials().root) {
  LogCapture log;
  SecureLink link(phone, root);
  if (when != nullptr) link.controller().setCertificateVerificationTime(*when);
  link.acceptsVersion();
  link.sendsHandshake(link.nextFlight());
  link.sendsHandshake(link.nextFlight());
  EXPECT_EQ(link.controller().sslWrapper().currentState(), SSL_WRAPPER_CONNECTED);
  PeerVerdict verdict{link.controller().sslWrapper().verifyPeer(), log.critical().back()};
  return verdict;
}

TEST(VerifyPeerTest, AChainUpToTheRootIsAccepted) {
  const PeerVerdict verdict = verdictOn(credentials().phone);
  EXPECT_TRUE(verdict.accepted);
  EXPECT_EQ(verdict.line, "[LHU] Verify, ret: 1, err_code: 0, returned: ok");
}

TEST(VerifyPeerTest, AChainOverAnIssuerThatThePhoneSendsIsAccepted) {
  const PeerVerdict verdict = verdictOn(credentials().indirectPhone);
  EXPECT_TRUE(verdict.accepted);
  EXPECT_EQ(verdict.line, "[LHU] Verify, ret: 1, err_code: 0, returned: ok");
}

TEST(VerifyPeerTest, AChainToAnotherRootOrWithoutItsIssuerIsRefused) {
  for (const Identity& phone : {credentials().strangerPhone, credentials().incompletePhone}) {
    const PeerVerdict verdict = verdictOn(phone);
    EXPECT_FALSE(verdict.accepted);
    EXPECT_EQ(verdict.line,
              "[LHU] Verify, ret: 0, err_code: 20, returned: unable to get local issuer certificate");
  }
}

TEST(VerifyPeerTest, NoNameIsCompared) { EXPECT_TRUE(verdictOn(credentials().headUnit).accepted); }

TEST(VerifyPeerTest, AnExpiredCertificateIsRefused) {
  const PeerVerdict verdict = verdictOn(credentials().expiredPhone);
  EXPECT_FALSE(verdict.accepted);
  EXPECT_EQ(verdict.line, "[LHU] Verify, ret: 0, err_code: 10, returned: certificate has expired");
}

TEST(VerifyPeerTest, ACertificateOfTheFutureIsRefused) {
  const PeerVerdict verdict = verdictOn(credentials().futurePhone);
  EXPECT_FALSE(verdict.accepted);
  EXPECT_EQ(verdict.line, "[LHU] Verify, ret: 0, err_code: 9, returned: certificate is not yet valid");
}

TEST(VerifyPeerTest, AGivenTimeBeforeItsEndAcceptsAnExpiredCertificate) {
  const time_t before = credentials().expiry - 60;
  EXPECT_TRUE(verdictOn(credentials().expiredPhone, &before).accepted);
}

TEST(VerifyPeerTest, AGivenTimeAfterItsEndRefusesAValidCertificate) {
  const time_t nextYear = time(nullptr) + 365 * 24 * 60 * 60L;
  const PeerVerdict verdict = verdictOn(credentials().phone, &nextYear);
  EXPECT_FALSE(verdict.accepted);
  EXPECT_EQ(verdict.line, "[LHU] Verify, ret: 0, err_code: 10, returned: certificate has expired");
}

TEST(VerifyPeerTest, TimeZeroIsATimeToo) {
  const time_t epoch = 0;
  EXPECT_FALSE(verdictOn(credentials().phone, &epoch).accepted);
}

}  // namespace
}  // namespace test
