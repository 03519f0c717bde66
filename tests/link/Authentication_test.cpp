// Who is let in: certificates that have run out, are not valid yet, or lead to another root.

#include <gmock/gmock.h>

#include "LiveLink.h"
#include "LogCapture.h"

namespace {

using namespace test;
using testing::Contains;
using testing::HasSubstr;

void expectRefusal(LiveLink* link) {
  const LogCapture log;
  link->start();
  EXPECT_FALSE(link->comesUp());
  link->joins();
  EXPECT_TRUE(link->host().has("authenticated -3"));
  EXPECT_TRUE(link->host().has("unrecoverable"));
  EXPECT_FALSE(link->host().has("discovery"));
  EXPECT_THAT(log.critical(), Contains("[LHU] Shutting down connection due to authentication failure."));
}

TEST(Authentication, refusesAPhoneWhoseCertificateHasExpired) {
  LiveLink link(credentials().expiredPhone);
  expectRefusal(&link);
}

TEST(Authentication, refusesAPhoneWhoseCertificateIsNotYetValid) {
  LiveLink link(credentials().futurePhone);
  expectRefusal(&link);
}

TEST(Authentication, refusesAPhoneThatAnotherRootHasSigned) {
  LiveLink link(credentials().strangerPhone);
  expectRefusal(&link);
}

TEST(Authentication, refusesEveryPhoneWhenItTrustsAnotherRoot) {
  LiveLink link(credentials().phone, credentials().strangerRoot);
  expectRefusal(&link);
}

TEST(Authentication, isToldNoByAPhoneThatDoesNotKnowItsCertificate) {
  const LogCapture log;
  LiveLink link(credentials().phone, credentials().root, credentials().strangerHeadUnit);
  link.start();
  EXPECT_FALSE(link.comesUp());
  link.joins();
  EXPECT_FALSE(link.phone().tls()->established());
  EXPECT_TRUE(link.host().has("authenticated -3"));
  EXPECT_TRUE(link.host().has("unrecoverable"));
  EXPECT_FALSE(link.host().has("discovery"));
}

TEST(Authentication, judgesCertificatesByTheTimeThatTheHostGave) {
  LiveLink accepted(credentials().expiredPhone);
  accepted.receiver().controller().setCertificateVerificationTime(credentials().expiry - 60);
  accepted.start();
  EXPECT_TRUE(accepted.comesUp());

  LiveLink refused(credentials().phone);
  refused.receiver().controller().setCertificateVerificationTime(credentials().expiry - 60 * 60 * 24 * 365L);
  expectRefusal(&refused);
}

}  // namespace
