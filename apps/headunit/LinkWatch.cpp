#include "headunit/LinkWatch.h"

#include <algorithm>

namespace headunit {
namespace {

constexpr const char* A_PHONE_THERE = "check that a phone is what connects to this port";

LinkEnd refusedVersion() {
  return {false, "phone", "it refused version 1.0 of the protocol", "update the phone's software"};
}

std::string seconds(milliseconds duration) { return std::to_string(duration.count() / 1000) + " s"; }

}  // namespace

void LinkWatch::leaving(const std::string& why, TimePoint now) {
  leftBecause_ = why;
  leftAt_ = now;
}

LinkWatch::Verdict LinkWatch::look(const LinkView& view, TimePoint now) {
  lookAgain_ = now + limits_.pingEvery;
  Verdict verdict;
  verdict.end = endOf(view, now);
  if (view.news.authentication && hasPassed(lastPing_, limits_.pingEvery, now)) {
    verdict.ping = true;
    lastPing_ = now;
  }
  verdict.lookAgain = lookAgain_;
  return verdict;
}

// Whether `limit` is over since `since`; if not, the next look comes no later than that.
bool LinkWatch::hasPassed(TimePoint since, milliseconds limit, TimePoint now) {
  const TimePoint deadline = since + limit;
  if (now >= deadline) return true;
  lookAgain_ = std::min(lookAgain_, deadline);
  return false;
}

// There is always something to send, a ping at least: what stands still does so because the phone does not
// read, and what it is owed would gather without limit.
bool LinkWatch::takesNothing(const LinkView& view, TimePoint now) {
  if (!written_ || written_->bytes != view.bytesWritten) written_ = Written{view.bytesWritten, now};
  return hasPassed(written_->since, limits_.silence, now);
}

// The same for a moment that begins with the first call.
bool LinkWatch::isOver(std::optional<TimePoint>* since, milliseconds limit, TimePoint now) {
  if (!*since) *since = now;
  return hasPassed(**since, limit, now);
}

std::optional<LinkEnd> LinkWatch::endOf(const LinkView& view, TimePoint now) {
  const LinkNews& news = view.news;
  if (news.stopped) return endOfStopped(view);
  if (news.beyondRepair) {
    const bool refused = news.authentication.value_or(0) != 0;
    if (!refused) return explainBrokenStream(view.logLines);
    if (isOver(&beyondRepairAt_, limits_.lastWord, now)) return explainAuthenticationFailure(view.logLines);
    return {};
  }
  if (leftAt_) {
    if (news.phoneAnsweredBye) return LinkEnd::cleanly(leftBecause_);
    if (hasPassed(*leftAt_, limits_.goodbye, now))
      return LinkEnd::cleanly(leftBecause_ + " (it did not say good-bye)");
    return {};
  }
  if (news.phoneSaidBye) {
    if (isOver(&phoneLeftAt_, limits_.hangUp, now)) return LinkEnd::cleanly("the phone said good-bye");
    return {};
  }
  if (!news.authentication) return endOfHandshake(view, now);
  if (hasPassed(view.lastHeard, limits_.silence, now)) {
    return LinkEnd{false, "phone",
                   "nothing has come from it for " + seconds(limits_.silence) + ", not even to a ping",
                   "check that it still runs and that the connection stands"};
  }
  if (takesNothing(view, now)) {
    return LinkEnd{false, "phone",
                   "it has taken nothing for " + seconds(limits_.silence) + ", although it still sends",
                   "check that it reads what comes to it"};
  }
  if (view.failingFor >= limits_.undecodable) {
    return LinkEnd{false, "phone",
                   "for " + seconds(limits_.undecodable) + " no picture could be decoded of its video",
                   "check that it sends H.264 and that its file is whole"};
  }
  return {};
}

// Nothing tells of a refusal but the library's lines, so it is looked for now and then. An acceptance follows
// its line at once.
std::optional<LinkEnd> LinkWatch::endOfHandshake(const LinkView& view, TimePoint now) {
  if (!view.news.versionAccepted) {
    lookAgain_ = std::min(lookAgain_, now + limits_.lastWord);
    if (hasAnswered(view) && isOver(&refusedAt_, limits_.lastWord, now)) return refusedVersion();
  }
  if (hasPassed(started_, limits_.handshake, now)) return handshakeTimeout(view);
  return {};
}

LinkEnd LinkWatch::endOfStopped(const LinkView& view) const {
  const LinkNews& news = view.news;
  if (news.phoneSaidBye) return LinkEnd::cleanly("the phone said good-bye");
  if (leftAt_) return LinkEnd::cleanly(leftBecause_);
  if (news.beyondRepair && news.authentication.value_or(0) != 0)
    return explainAuthenticationFailure(view.logLines);
  if (news.beyondRepair || view.brokenBy.empty()) return explainBrokenStream(view.logLines);
  if (news.authentication) {
    return {false, "phone", "it went away without a good-bye (" + view.brokenBy + ")",
            "see its own messages for the reason"};
  }
  if (!hasAnswered(view)) {
    return {false, "phone", "it went away without having answered (" + view.brokenBy + ")", A_PHONE_THERE};
  }
  if (!news.versionAccepted) return refusedVersion();
  return {false, "phone", "it went away before the handshake was done (" + view.brokenBy + ")",
          "see its own messages; it may have refused this head unit's certificate"};
}

// A phone answers with its version before all else.
bool LinkWatch::hasAnswered(const LinkView& view) {
  return view.news.versionAccepted ||
         std::any_of(view.logLines.begin(), view.logLines.end(), [](const std::string& line) {
           return line.find("Phone reported version") != std::string::npos;
         });
}

LinkEnd LinkWatch::handshakeTimeout(const LinkView& view) const {
  const std::string limit = " within " + seconds(limits_.handshake);
  if (!view.anythingHeard) {
    return {false, "phone", "it said nothing" + limit, A_PHONE_THERE};
  }
  if (!hasAnswered(view)) {
    return {false, "phone", "what it said" + limit + " is no answer of a phone's", A_PHONE_THERE};
  }
  if (!view.news.versionAccepted) return refusedVersion();
  return {false, "phone", "it did not finish the handshake" + limit, "connect it again"};
}

}  // namespace headunit
