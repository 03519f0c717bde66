#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "headunit/LinkWatch.h"

namespace headunit {
namespace {

using std::chrono::seconds;
using testing::HasSubstr;

/// A link as the watch sees it, on a clock that the test winds.
class HeadunitLinkWatch : public testing::Test {
 protected:
  HeadunitLinkWatch() { view.lastHeard = start; }

  LinkWatch::Verdict at(milliseconds time) { return watch.look(view, start + time); }
  /// The link's end at that time, which must have come.
  LinkEnd endAt(milliseconds time) {
    const LinkWatch::Verdict verdict = at(time);
    EXPECT_TRUE(verdict.end) << "at " << time.count() << " ms";
    return verdict.end.value_or(LinkEnd());
  }
  void hearAt(milliseconds time) {
    view.lastHeard = start + time;
    view.anythingHeard = true;
  }
  void authenticate() {
    hearAt(milliseconds(10));
    view.news.versionAccepted = true;
    view.news.authentication = 0;
  }
  void refuse() {
    authenticate();
    view.news.authentication = -3;
    view.news.beyondRepair = true;
  }

  const TimePoint start = TimePoint(seconds(1000));
  LinkView view;
  LinkWatch watch{start, LinkLimits()};
};

TEST_F(HeadunitLinkWatch, GivesASilentPhoneFourSeconds) {
  EXPECT_FALSE(at(milliseconds(3999)).end);
  const LinkEnd end = endAt(milliseconds(4000));
  EXPECT_FALSE(end.clean);
  EXPECT_THAT(end.words(), HasSubstr("The phone: it said nothing within 4 s"));
}

TEST_F(HeadunitLinkWatch, TellsAHalfDoneHandshakeFromSilence) {
  hearAt(milliseconds(3900));
  view.news.versionAccepted = true;
  const LinkEnd end = endAt(milliseconds(4000));
  EXPECT_THAT(end.what, HasSubstr("did not finish the handshake"));
  EXPECT_EQ(end.advice, "connect it again");
}

TEST_F(HeadunitLinkWatch, DoubtsThatAPeerWithoutAVersionIsAPhone) {
  hearAt(milliseconds(3900));
  view.logLines = {"[LHU] sendVersionRequest() :: Starting link, car major=1 minor=0"};
  const LinkEnd end = endAt(milliseconds(4000));
  EXPECT_EQ(end.what, "what it said within 4 s is no answer of a phone's");
  EXPECT_EQ(end.advice, "check that a phone is what connects to this port");
}

TEST_F(HeadunitLinkWatch, DoubtsThatAPeerIsAPhoneThatGoesWithoutHavingAnswered) {
  hearAt(milliseconds(5));
  view.news.stopped = true;
  view.brokenBy = "the connection was closed";
  const LinkEnd end = endAt(milliseconds(500));
  EXPECT_EQ(end.what, "it went away without having answered (the connection was closed)");
  EXPECT_EQ(end.advice, "check that a phone is what connects to this port");
}

TEST_F(HeadunitLinkWatch, DoesNotStayWithAPhoneThatRefusedTheVersion) {
  hearAt(milliseconds(5));
  view.logLines = {"[LHU] handleVersionResponse() :: Phone reported version major=2 minor=0"};
  const LinkWatch::Verdict verdict = at(milliseconds(5));
  EXPECT_FALSE(verdict.end) << "it may hang up by itself";
  EXPECT_EQ(verdict.lookAgain, start + milliseconds(305));
  const LinkEnd end = endAt(milliseconds(305));
  EXPECT_FALSE(end.clean);
  EXPECT_THAT(end.what, HasSubstr("refused version 1.0"));
}

TEST_F(HeadunitLinkWatch, TakesNoAnswerForARefusalBeforeItCanTell) {
  view.logLines = {"[LHU] handleVersionResponse() :: Phone reported version major=1 minor=0"};
  EXPECT_FALSE(at(milliseconds(5)).end);
  view.news.versionAccepted = true;
  EXPECT_FALSE(at(milliseconds(305)).end);
}

TEST_F(HeadunitLinkWatch, LooksForARefusalOfWhichNobodyTells) {
  EXPECT_EQ(at(milliseconds(0)).lookAgain, start + milliseconds(300));
}

TEST_F(HeadunitLinkWatch, TellsARefusedVersionThoughThePhoneHasGone) {
  hearAt(milliseconds(5));
  view.logLines = {"[LHU] handleVersionResponse() :: Phone reported version major=2 minor=0"};
  view.news.stopped = true;
  view.brokenBy = "the connection was closed";
  EXPECT_THAT(endAt(milliseconds(500)).what, HasSubstr("refused version 1.0"));
}

TEST_F(HeadunitLinkWatch, LooksAgainWhenALimitIsOver) {
  view.news.versionAccepted = true;
  const LinkWatch::Verdict verdict = at(milliseconds(3500));
  EXPECT_EQ(verdict.lookAgain, start + milliseconds(4000));
}

TEST_F(HeadunitLinkWatch, PingsEachSecondOnceAuthenticated) {
  EXPECT_FALSE(at(milliseconds(1500)).ping);
  authenticate();
  EXPECT_TRUE(at(milliseconds(1600)).ping);
  EXPECT_FALSE(at(milliseconds(2599)).ping);
  EXPECT_TRUE(at(milliseconds(2600)).ping);
}

TEST_F(HeadunitLinkWatch, GivesUpAPhoneThatFallsSilent) {
  authenticate();
  hearAt(milliseconds(9000));
  EXPECT_FALSE(at(milliseconds(12'999)).end);
  EXPECT_THAT(endAt(milliseconds(13'000)).words(), HasSubstr("nothing has come from it for 4 s"));
}

TEST_F(HeadunitLinkWatch, WaitsForTheAnswerToItsGoodbye) {
  authenticate();
  watch.leaving("enough", start + milliseconds(100));
  EXPECT_TRUE(watch.isLeaving());
  EXPECT_FALSE(at(milliseconds(1599)).end);
  view.news.phoneAnsweredBye = true;
  const LinkEnd end = endAt(milliseconds(1599));
  EXPECT_TRUE(end.clean);
  EXPECT_EQ(end.words(), "enough");
}

TEST_F(HeadunitLinkWatch, LeavesCleanlyWithoutAnAnswerInTheEnd) {
  authenticate();
  watch.leaving("enough", start + milliseconds(100));
  EXPECT_TRUE(endAt(milliseconds(1600)).clean);
}

TEST_F(HeadunitLinkWatch, LetsThePhoneHangUpAfterItsGoodbye) {
  authenticate();
  view.news.phoneSaidBye = true;
  EXPECT_FALSE(at(milliseconds(500)).end);
  EXPECT_FALSE(at(milliseconds(1499)).end);
  EXPECT_TRUE(endAt(milliseconds(1500)).clean);
}

TEST_F(HeadunitLinkWatch, ClosingAfterAGoodbyeIsClean) {
  authenticate();
  view.news.phoneSaidBye = true;
  view.news.stopped = true;
  view.brokenBy = "the connection was closed";
  EXPECT_TRUE(endAt(milliseconds(500)).clean);
}

TEST_F(HeadunitLinkWatch, ClosingWithoutAGoodbyeIsNot) {
  authenticate();
  view.news.stopped = true;
  view.brokenBy = "the connection was closed";
  const LinkEnd end = endAt(milliseconds(500));
  EXPECT_FALSE(end.clean);
  EXPECT_THAT(end.what, HasSubstr("without a good-bye (the connection was closed)"));
}

TEST_F(HeadunitLinkWatch, ClosingDuringTheHandshakeIsTold) {
  view.news.versionAccepted = true;
  view.news.stopped = true;
  view.brokenBy = "the connection was closed";
  EXPECT_THAT(endAt(milliseconds(500)).what, HasSubstr("before the handshake was done"));
}

TEST_F(HeadunitLinkWatch, StoppingByItselfComesOfBadBytes) {
  authenticate();
  view.news.stopped = true;
  EXPECT_THAT(endAt(milliseconds(500)).what, HasSubstr("bytes that make no frame"));
}

TEST_F(HeadunitLinkWatch, LetsTheRefusalReachThePhone) {
  refuse();
  EXPECT_FALSE(at(milliseconds(20)).end);
  EXPECT_FALSE(at(milliseconds(319)).end);
  EXPECT_FALSE(endAt(milliseconds(320)).clean);
}

TEST_F(HeadunitLinkWatch, SaysWhyACertificateIsNotTrusted) {
  refuse();
  view.logLines = {"[LHU] Verify, ret: 0, err_code: 10, returned: certificate has expired"};
  at(milliseconds(20));
  EXPECT_THAT(endAt(milliseconds(400)).what, HasSubstr("not to be trusted: certificate has expired"));
}

TEST_F(HeadunitLinkWatch, SaysThatThePhoneMayHaveRefusedOurs) {
  refuse();
  view.logLines = {"[LHU] ssl state=error, ret: -1, err: 1"};
  at(milliseconds(20));
  EXPECT_THAT(endAt(milliseconds(400)).what, HasSubstr("refused this head unit's certificate"));
}

TEST_F(HeadunitLinkWatch, AFramingErrorEndsTheLinkAtOnce) {
  authenticate();
  view.news.beyondRepair = true;
  EXPECT_THAT(endAt(milliseconds(20)).what, HasSubstr("bytes that make no frame"));
}

TEST_F(HeadunitLinkWatch, AFrameThatCannotBeDecryptedIsToldApart) {
  authenticate();
  view.news.beyondRepair = true;
  view.logLines = {"[LHU] Failed to dequeue from decryption pipeline!"};
  EXPECT_THAT(endAt(milliseconds(20)).what, HasSubstr("cannot be decrypted"));
}

TEST_F(HeadunitLinkWatch, GivesAVideoThatCannotBeDecodedFourSeconds) {
  authenticate();
  view.failingFor = milliseconds(3999);
  EXPECT_FALSE(at(milliseconds(1000)).end);
  view.failingFor = milliseconds(4000);
  EXPECT_THAT(endAt(milliseconds(1000)).what, HasSubstr("for 4 s no picture could be decoded"));
}

TEST_F(HeadunitLinkWatch, DoesNotCountTheTimeWithoutAnyVideo) {
  authenticate();
  view.failingFor = milliseconds(1);
  at(milliseconds(1000));
  hearAt(milliseconds(60'000));
  view.bytesWritten = 1;
  EXPECT_FALSE(at(milliseconds(60'000)).end);
}

TEST_F(HeadunitLinkWatch, GivesUpAPhoneThatSendsButTakesNothing) {
  authenticate();
  view.bytesWritten = 5000;
  EXPECT_FALSE(at(milliseconds(1000)).end);
  hearAt(milliseconds(3000));
  view.bytesWritten = 5001;
  EXPECT_FALSE(at(milliseconds(3000)).end);
  hearAt(milliseconds(6000));
  const LinkWatch::Verdict verdict = at(milliseconds(6999));
  EXPECT_FALSE(verdict.end);
  EXPECT_EQ(verdict.lookAgain, start + milliseconds(7000));
  EXPECT_THAT(endAt(milliseconds(7000)).words(), HasSubstr("it has taken nothing for 4 s"));
}

}  // namespace
}  // namespace headunit
