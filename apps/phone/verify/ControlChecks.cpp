// Keep-alive, focus, refusals and farewell on channel 0.
#include <limits>

#include "phone/verify/Probe.h"

namespace phone::verify {

namespace {

void echoesTimestamp(Probe& probe) {
  PhoneLink& link = probe.link();
  for (const std::int64_t timestamp :
       {std::int64_t{1}, std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::max(),
        std::int64_t{0x0102030405060708}}) {
    link.sendPing(timestamp);
    const auto answer = probe.await<PingResponse>(0, MESSAGE_PING_RESPONSE, "a PingResponse");
    Probe::expect(answer.timestamp() == timestamp, "timestamp " + std::to_string(timestamp),
                  std::to_string(answer.timestamp()));
  }
}

void answersPingsInOrder(Probe& probe) {
  PhoneLink& link = probe.link();
  constexpr int pings = 20;
  for (int i = 1; i <= pings; ++i) link.sendPing(1000 + i);
  for (int i = 1; i <= pings; ++i) {
    const auto answer =
        probe.await<PingResponse>(0, MESSAGE_PING_RESPONSE, "PingResponse " + std::to_string(i));
    Probe::expect(answer.timestamp() == 1000 + i, "the answer to ping " + std::to_string(i),
                  "timestamp " + std::to_string(answer.timestamp()));
  }
}

void answersOnePingOnce(Probe& probe) {
  probe.link().sendPing(77);
  probe.await(0, MESSAGE_PING_RESPONSE, "a PingResponse");
  probe.runUntil([&probe] { return probe.count(0, MESSAGE_PING_RESPONSE) > 1; }, 50'000);
  const std::size_t answers = probe.count(0, MESSAGE_PING_RESPONSE);
  Probe::expect(answers == 1, "one PingResponse to one PingRequest", std::to_string(answers));
}

void answersBugReportPing(Probe& probe) {
  for (const bool wanted : {true, false}) {
    probe.link().sendPing(42, wanted);
    const auto answer = probe.await<PingResponse>(0, MESSAGE_PING_RESPONSE, "a PingResponse");
    Probe::expect(answer.timestamp() == 42, "timestamp 42", std::to_string(answer.timestamp()));
  }
}

void refusesDamagedRecords(Probe& probe) {
  probe.link();
  probe.expectRefused(0, messageBytes(MESSAGE_PING_REQUEST), "a PingRequest without a timestamp");
  probe.expectRefused(0, messageBytes(MESSAGE_PING_REQUEST, Bytes{0x08}), "a PingRequest cut short");
  probe.expectRefused(0, messageBytes(MESSAGE_AUDIO_FOCUS_REQUEST_NOTIFICATION),
                      "an AudioFocusRequestNotification without a request");
  probe.expectRefused(0, messageBytes(MESSAGE_BYE_BYE_REQUEST, Bytes{0x08, 0x00}),
                      "a ByeByeRequest with reason 0, which is none");
  probe.expectAlive();
}

void refusesUnknownTypes(Probe& probe) {
  probe.link();
  for (const std::uint16_t type :
       std::initializer_list<std::uint16_t>{10, 20, 100, 254, 0x7fff, 0x8000, 0x8001}) {
    probe.expectRefused(0, messageBytes(type), "type " + hex(type) + " on channel 0");
  }
  probe.expectAlive();
}

void refusesItsOwnTypes(Probe& probe) {
  probe.link();
  for (const std::uint16_t type : std::initializer_list<std::uint16_t>{
           MESSAGE_VERSION_REQUEST, MESSAGE_AUTH_RESPONSE, MESSAGE_SERVICE_DISCOVERY_RESPONSE,
           MESSAGE_NAV_FOCUS_NOTIFICATION, MESSAGE_AUDIO_FOCUS_NOTIFICATION}) {
    probe.expectRefused(0, messageBytes(type), "type " + hex(type) + ", which only a head unit sends");
  }
}

void refusesChannelMessagesOutsideControl(Probe& probe) {
  probe.link();
  ChannelOpenRequest request;
  request.set_priority(0);
  request.set_service_id(1);
  probe.expectRefused(0, messageBytes(MESSAGE_CHANNEL_OPEN_REQUEST, request),
                      "a ChannelOpenRequest in a frame that is no control frame");
}

void takesUnaskedPingResponse(Probe& probe) {
  probe.link();
  PingResponse response;
  response.set_timestamp(5);
  probe.expectTaken(0, messageBytes(MESSAGE_PING_RESPONSE, response), "a PingResponse that nobody asked for");
}

void takesVoiceSessions(Probe& probe) {
  probe.link();
  for (const VoiceSessionStatus status : {VOICE_SESSION_1, VOICE_SESSION_2}) {
    VoiceSessionNotification notification;
    notification.set_status(status);
    probe.expectTaken(0, messageBytes(MESSAGE_VOICE_SESSION_NOTIFICATION, notification), "a voice session");
  }
}

void answersAudioFocus(Probe& probe) {
  for (const AudioFocusRequestType request : {AUDIO_FOCUS_GAIN, AUDIO_FOCUS_GAIN_TRANSIENT,
                                              AUDIO_FOCUS_GAIN_TRANSIENT_MAY_DUCK, AUDIO_FOCUS_RELEASE}) {
    probe.link().requestAudioFocus(request);
    const std::string what = "an AudioFocusNotification in answer to request " + std::to_string(request);
    const auto answer = probe.await<AudioFocusNotification>(0, MESSAGE_AUDIO_FOCUS_NOTIFICATION, what);
    Probe::expect(answer.has_unsolicited(), "unsolicited told", "it is absent");
    Probe::expect(!answer.unsolicited(), "unsolicited false, since it answers a request", "true");
  }
}

void passesUnknownAudioFocus(Probe& probe) {
  probe.link();
  probe.expectTaken(0, messageBytes(MESSAGE_AUDIO_FOCUS_REQUEST_NOTIFICATION, Bytes{0x08, 0x09}),
                    "an audio focus request of kind 9");
}

void answersNavigationFocus(Probe& probe) {
  for (const NavFocusType focus : {NAV_FOCUS_2, NAV_FOCUS_1}) {
    probe.link().requestNavFocus(focus);
    probe.await<NavFocusNotification>(0, MESSAGE_NAV_FOCUS_NOTIFICATION,
                                      "a NavFocusNotification in answer to request " + std::to_string(focus));
  }
}

void answersGoodBye(Probe& probe) {
  PhoneLink& link = probe.freshUpLink();
  link.sayByeBye();
  const Message answer = probe.await(0, MESSAGE_BYE_BYE_RESPONSE, "a ByeByeResponse");
  Probe::expect(answer.bodySize() == 0, "a ByeByeResponse without a body", hex(answer.bytes));
}

void comesBack(Probe& probe) {
  probe.freshUpLink();
  probe.endLink();
  probe.freshUpLink();
  probe.expectAlive();
}

}  // namespace

Checks controlChecks() {
  return {
      {"ping.timestamp", "A PingResponse repeats the request's timestamp, whatever it is.", echoesTimestamp},
      {"ping.order", "Twenty pings in a row are answered in their order.", answersPingsInOrder},
      {"ping.once", "One ping gets one answer.", answersOnePingOnce},
      {"ping.bug-report", "A ping that asks for a bug report, or does not, is answered alike.",
       answersBugReportPing},
      {"ping.unasked-response", "A PingResponse that nobody asked for is taken in silence.",
       takesUnaskedPingResponse},
      {"control.damaged", "Records that do not parse are refused as unexpected, and the link lives.",
       refusesDamagedRecords},
      {"control.unknown", "Types that channel 0 does not know are refused as unexpected.",
       refusesUnknownTypes},
      {"control.own-types", "Types that only a head unit sends are refused as unexpected.",
       refusesItsOwnTypes},
      {"control.channel-messages", "Channel messages outside control frames are refused.",
       refusesChannelMessagesOutsideControl},
      {"control.voice", "Voice session notifications are taken in silence.", takesVoiceSessions},
      {"focus.audio", "Each kind of audio focus request is answered, as solicited.", answersAudioFocus},
      {"focus.audio-unknown", "An audio focus request of an unknown kind is not refused as damaged.",
       passesUnknownAudioFocus},
      {"focus.navigation", "Navigation focus requests are answered.", answersNavigationFocus},
      {"bye.answered", "Good-bye is answered, without a body.", answersGoodBye},
      {"bye.comes-back", "After good-bye the head unit takes the next link.", comesBack},
  };
}

}  // namespace phone::verify
