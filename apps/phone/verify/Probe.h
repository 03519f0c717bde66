#ifndef PHONE_VERIFY_PROBE_H
#define PHONE_VERIFY_PROBE_H

#include <map>
#include <utility>

#include "phone/verify/Check.h"
#include "phone/verify/LinkUnderTest.h"

namespace phone::verify {

constexpr Micros patience = 1'500'000;  ///< For an answer that is due.
constexpr Micros bringUpLimit = 4'000'000;

/// What a check works with: a link, ways to wait for what the head unit says, and ways to complain about it.
class Probe {
 public:
  /// A head unit speaks first: on a link on which it has not, no wait is longer than `firstByte`.
  Probe(HeadUnit* headUnit, Credentials credentials, Micros firstByte = bringUpLimit)
      : headUnit_(headUnit), credentials_(std::move(credentials)), firstByte_(firstByte) {}
  ~Probe() { endLink(); }
  Probe(const Probe&) = delete;
  Probe& operator=(const Probe&) = delete;

  /// Forgets what came before. A link that an earlier check spoilt is given up.
  void beginCheck(bool keepLink);
  /// Closes the link politely, if there is one.
  void endLink();
  /// The rules of frames that head unit broke without being asked, over all links so far.
  const std::vector<std::string>& violations() const { return violations_; }

  // ---- Links ----

  /// What a well-behaved phone says of itself.
  LinkOptions options() const;
  /// A new link on which nothing has been said yet, in place of the last one.
  PhoneLink& freshLink(LinkOptions options);
  PhoneLink& freshUpLink();
  /// A link that is up: the last one if it still is, otherwise a new one.
  PhoneLink& link();
  /// Throws Interrupted once the user wants to end.
  bool runUntil(const std::function<bool()>& done, Micros limit = patience);
  /// How the last link ended; empty if it has not.
  std::optional<LinkEnd> end() const { return link_ ? link_->link().end() : std::nullopt; }
  /// Whether there is a link on which the head unit has never said a byte.
  bool isSilent() const { return link_ && !link_->link().hasHeard(); }
  /// Waits until the head unit has dealt with all that was sent to it.
  void settle();

  // ---- Services ----

  const std::vector<Service>& services();
  template <class Has>
  Service find(Has has, const char* name) {
    for (const Service& service : services()) {
      if (has(service)) return service;
    }
    throw NotOffered{name};
  }
  /// Opens a new channel to a service, closing the one that it has.
  std::uint8_t open(const Service& service);
  void close(std::uint8_t channel);
  /// The channel that a service has; opened if there is none.
  std::uint8_t channelOf(const Service& service);

  // ---- What the head unit says ----

  /// The next message of a type since the check began. Complains, in terms of `what`, if it does not come.
  Message await(std::uint8_t channel, int type, const std::string& what, Micros limit = patience);
  template <class Record>
  Record await(std::uint8_t channel, int type, const std::string& what, Micros limit = patience) {
    const auto record = await(channel, type, what, limit).as<Record>();
    if (!record) throw Mismatch{what, "a message of this type that does not parse"};
    return *record;
  }
  /// The same, without a complaint: empty if it does not come within `limit`.
  std::optional<Message> awaitMaybe(std::uint8_t channel, int type, Micros limit);
  /// The next one that `fits`; those that do not are passed over for good, and all share one `limit`.
  std::optional<Message> awaitFitting(std::uint8_t channel, int type,
                                      const std::function<bool(const Message&)>& fits, Micros limit);
  /// How many of a type came since the check began.
  std::size_t count(std::uint8_t channel, int type) const;
  /// What has come on a channel since the check began, in words.
  std::string cameOn(std::uint8_t channel) const;
  /// What a message type is called on a channel.
  std::string typeOn(std::uint8_t channel, int type) const;

  // ---- Expectations ----

  static void expect(bool holds, const std::string& expected, const std::string& came) {
    if (!holds) throw Mismatch{expected, came};
  }
  /// Sends a message that the head unit must answer with a bare "unexpected message".
  void expectRefused(std::uint8_t channel, const Bytes& message, const std::string& what);
  /// Sends a message that the head unit must take without a word of refusal.
  void expectTaken(std::uint8_t channel, const Bytes& message, const std::string& what);
  /// Sends a message to which nothing at all must come.
  void expectSilence(std::uint8_t channel, const Bytes& message, const std::string& what);
  void expectAlive();

 private:
  void give(std::unique_ptr<LinkUnderTest> link);
  bool isUp() const;
  bool waitOn(const std::function<bool()>& done, Micros limit);
  std::size_t said(std::uint8_t channel) const;
  const Service* serviceOn(std::uint8_t channel) const;
  std::string whyNothing(std::uint8_t channel) const;

  HeadUnit* headUnit_;
  Credentials credentials_;
  Micros firstByte_;
  std::unique_ptr<LinkUnderTest> link_;
  std::vector<Service> services_;
  std::map<int, std::uint8_t> channels_;                      ///< Those that are open, by service.
  std::map<std::uint8_t, std::size_t> begin_;                 ///< Messages of a channel when the check began.
  std::map<std::pair<std::uint8_t, int>, std::size_t> seen_;  ///< Messages of a type that were waited for.
  std::vector<std::string> violations_;
  std::int64_t pings_ = 0x5e771e;
};

/// "0x8003", as message types are told in reports.
std::string hex(int type);
std::string hex(const Bytes& bytes);

}  // namespace phone::verify

#endif
