#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "headunit/Clock.h"
#include "headunit/LinkEnd.h"
#include "headunit/LinkJournal.h"

namespace headunit {

/// How long the head unit waits for a phone.
struct LinkLimits {
  milliseconds handshake{4000};
  milliseconds silence{4000};  ///< after the handshake, pings included
  milliseconds pingEvery{1000};
  milliseconds goodbye{1500};  ///< for the answer to our good-bye
  milliseconds hangUp{1000};   ///< for the phone to close the connection after its own
  milliseconds lastWord{300};  ///< for a refusal of ours to get out, or for the phone to go after its own
  milliseconds undecodable{4000};
};

/// All that is known of a link at one moment.
struct LinkView {
  LinkNews news;
  TimePoint lastHeard;  ///< when bytes last came; at first, when the link began
  bool anythingHeard = false;
  std::uint64_t bytesWritten = 0;     ///< so far
  std::string brokenBy;               ///< why the byte stream ended by itself; empty while it has not
  Clock::duration failingFor{};       ///< how long frames have gone on coming, but no pictures of them
  std::vector<std::string> logLines;  ///< the library's latest
};

/// Decides when a link is over and when to ping, knowing no threads and no clock.
class LinkWatch {
 public:
  LinkWatch(TimePoint started, LinkLimits limits) : limits_(limits), started_(started), lastPing_(started) {}

  struct Verdict {
    std::optional<LinkEnd> end;
    bool ping = false;
    TimePoint lookAgain;  ///< at the latest; any news is a reason to look sooner
  };
  Verdict look(const LinkView& view, TimePoint now);

  /// We have said good-bye, for the reason given.
  void leaving(const std::string& why, TimePoint now);
  bool isLeaving() const { return leftAt_.has_value(); }

 private:
  struct Written {
    std::uint64_t bytes;
    TimePoint since;  ///< when it was first seen to be so many
  };

  std::optional<LinkEnd> endOf(const LinkView& view, TimePoint now);
  std::optional<LinkEnd> endOfHandshake(const LinkView& view, TimePoint now);
  LinkEnd endOfStopped(const LinkView& view) const;
  static bool hasAnswered(const LinkView& view);
  LinkEnd handshakeTimeout(const LinkView& view) const;
  bool takesNothing(const LinkView& view, TimePoint now);
  bool isOver(std::optional<TimePoint>* since, milliseconds limit, TimePoint now);
  bool hasPassed(TimePoint since, milliseconds limit, TimePoint now);

  const LinkLimits limits_;
  const TimePoint started_;
  TimePoint lastPing_;
  std::string leftBecause_;
  std::optional<TimePoint> leftAt_;
  std::optional<TimePoint> phoneLeftAt_;
  std::optional<TimePoint> beyondRepairAt_;
  std::optional<TimePoint> refusedAt_;  ///< by the phone
  std::optional<Written> written_;
  TimePoint lookAgain_;
};

}  // namespace headunit
