// How a link starts: version, TLS, consent.
#include "phone/verify/Probe.h"
#include "phone/verify/Stranger.h"

namespace phone::verify {

namespace {

void sendsVersionRequest(Probe& probe) {
  LinkOptions options = probe.options();
  options.answersVersion = false;
  PhoneLink& link = probe.freshLink(options);
  const Message first = probe.await(0, MESSAGE_VERSION_REQUEST, "a version request");
  Probe::expect(first.order == 0, "the version request is the first message",
                "another message came before it");
  Probe::expect(first.bytes == Bytes{0, 1, 0, 1, 0, 0}, "00 01 00 01 00 00", hex(first.bytes));
  const FrameRecord& frame = link.receivedFrames()[0];
  Probe::expect(frame.channel == 0 && frame.flags == (flagFirst | flagLast),
                "one plain frame on channel 0, flags 0x03",
                "channel " + std::to_string(frame.channel) + ", flags " + hex(frame.flags));
}

void waitsForTheVerdict(Probe& probe) {
  LinkOptions options = probe.options();
  options.answersVersion = false;
  PhoneLink& link = probe.freshLink(options);
  probe.await(0, MESSAGE_VERSION_REQUEST, "a version request");
  probe.settle();
  Probe::expect(link.received(0).size() == 1, "nothing after the version request until it is answered",
                probe.cameOn(0));
}

PhoneLink& refusedLink(Probe& probe) {
  LinkOptions options = probe.options();
  options.verdict = 1;
  PhoneLink& link = probe.freshLink(options);
  probe.await(0, MESSAGE_VERSION_REQUEST, "a version request");
  return link;
}

void idlesAfterRefusal(Probe& probe) {
  refusedLink(probe);
  probe.settle();
  Probe::expect(probe.count(0, MESSAGE_SSL_HANDSHAKE) == 0,
                "no handshake after the phone refused the version", probe.cameOn(0));
}

void refusesDiscoveryAfterRefusal(Probe& probe) {
  refusedLink(probe);
  probe.expectRefused(0, messageBytes(MESSAGE_SERVICE_DISCOVERY_REQUEST, Bytes()),
                      "a ServiceDiscoveryRequest after the phone refused the version");
}

void beginsHandshake(Probe& probe) {
  LinkOptions options = probe.options();
  options.answersHandshake = false;
  PhoneLink& link = probe.freshLink(options);
  const Message hello = probe.await(0, MESSAGE_SSL_HANDSHAKE, "the head unit's first TLS flight");
  Probe::expect(
      hello.bodySize() > 5 && hello.body()[0] == 0x16 && hello.body()[1] == 3 && hello.body()[5] == 1,
      "a TLS record with a ClientHello", hex(hello.bytes));
  Probe::expect((link.receivedFrames().back().flags & flagEncrypted) == 0, "a plain frame",
                "a frame that is flagged as encrypted");
}

void authenticates(Probe& probe) {
  PhoneLink& link = probe.freshLink(probe.options());
  probe.runUntil([&link] { return link.end() || (link.tls() != nullptr && link.tls()->established()); },
                 bringUpLimit);
  Probe::expect(link.tls() != nullptr && link.tls()->established(),
                "a TLS 1.2 handshake, with a client certificate that leads to the root",
                link.end() ? link.end()->words() : probe.cameOn(0));
}

void consents(Probe& probe) {
  probe.freshUpLink();
  probe.settle();
  Probe::expect(probe.count(0, MESSAGE_AUTH_RESPONSE) == 1, "exactly one AuthResponse",
                std::to_string(probe.count(0, MESSAGE_AUTH_RESPONSE)));
  const Message message = probe.await(0, MESSAGE_AUTH_RESPONSE, "an AuthResponse");
  Probe::expect(!message.encrypted, "an AuthResponse in the clear", "an encrypted one");
  Probe::expect(message.as<AuthResponse>()->status() == STATUS_SUCCESS, "status 0",
                std::to_string(message.as<AuthResponse>()->status()));
}

void expectAuthenticationFailure(Probe& probe) {
  const auto answer = probe.await<AuthResponse>(0, MESSAGE_AUTH_RESPONSE, "an AuthResponse", bringUpLimit);
  Probe::expect(answer.status() == STATUS_AUTHENTICATION_FAILURE, "AuthResponse with status -3",
                "status " + std::to_string(answer.status()));
}

void refusesStranger(Probe& probe) {
  LinkOptions options = probe.options();
  options.credentials = strangerLike(options.credentials);
  probe.freshLink(options);
  expectAuthenticationFailure(probe);
}

void wantsWholeFlights(Probe& probe) {
  LinkOptions options = probe.options();
  options.answersHandshake = false;
  PhoneLink& link = probe.freshLink(options);
  const Message hello = probe.await(0, MESSAGE_SSL_HANDSHAKE, "the head unit's first TLS flight");
  Bytes flight;
  link.tls()->handshake(hello.body(), hello.bodySize(), &flight);
  flight.resize(flight.size() / 2);
  link.sendHandshake(flight);
  expectAuthenticationFailure(probe);
}

void discoversBeforeTls(Probe& probe) {
  LinkOptions options = probe.options();
  options.answersHandshake = false;
  PhoneLink& link = probe.freshLink(options);
  probe.await(0, MESSAGE_SSL_HANDSHAKE, "the head unit's first TLS flight");
  link.sendServiceDiscoveryRequest();
  const Message answer =
      probe.await(0, MESSAGE_SERVICE_DISCOVERY_RESPONSE,
                  "services in answer to a request that comes once the version is accepted");
  Probe::expect(!answer.encrypted, "an answer in the clear, there being no TLS yet", "an encrypted one");
}

void encryptsFromThenOn(Probe& probe) {
  PhoneLink& link = probe.freshUpLink();
  probe.settle();
  for (const Message& message : link.received(0)) {
    const int type = message.type();
    const bool plain =
        type == MESSAGE_VERSION_REQUEST || type == MESSAGE_SSL_HANDSHAKE || type == MESSAGE_AUTH_RESPONSE;
    Probe::expect(message.encrypted != plain,
                  plain ? "the start of the link in the clear" : "everything after the handshake encrypted",
                  "message " + hex(type) + (plain ? " is encrypted" : " came in the clear"));
  }
}

}  // namespace

Checks bringUpChecks() {
  return {
      {"link.version-request", "The head unit speaks first: version 1.0, in one plain frame.",
       sendsVersionRequest},
      {"link.version-waits", "It says nothing more until the phone has given its verdict.",
       waitsForTheVerdict},
      {"link.refusal-idles", "A version that the phone refuses leads to no handshake.", idlesAfterRefusal},
      {"link.refusal-no-discovery", "A refused version leaves discovery refused too.",
       refusesDiscoveryAfterRefusal},
      {"link.client-hello", "An accepted version is followed by a ClientHello in the clear.",
       beginsHandshake},
      {"link.handshake", "The TLS handshake succeeds, and the head unit shows its certificate.",
       authenticates},
      {"link.auth-response", "One AuthResponse, in the clear, says yes.", consents},
      {"link.stranger-refused", "A phone whose certificate leads elsewhere is refused with status -3.",
       refusesStranger},
      {"link.whole-flights", "A handshake flight cut in two is an authentication failure.",
       wantsWholeFlights},
      {"link.early-discovery", "Discovery is served as soon as the version is accepted.", discoversBeforeTls},
      {"link.encrypted", "All that follows the AuthResponse is encrypted, and nothing before it.",
       encryptsFromThenOn},
  };
}

}  // namespace phone::verify
