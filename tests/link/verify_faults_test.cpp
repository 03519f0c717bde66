#include <gtest/gtest.h>

#include "faults.h"

// Head units that are broken on purpose: each fault is found by the check that looks for it.

namespace test {
namespace {

const Fault LINK_FAULTS[] = {
    {"VersionTwo", "link.version-request",
     [] {
       return sent(changing(MESSAGE_VERSION_REQUEST, [](Frame* frame) {
         if (frame->channel == 0) frame->payload[3] = 2;
       }));
     }},
    {"VersionRequestFlaggedEncrypted", "link.version-request",
     [] {
       return sent(
           changing(MESSAGE_VERSION_REQUEST, [](Frame* frame) { frame->flags |= phone::flagEncrypted; }));
     }},
    {"SpeaksBeforeTheVerdict", "link.version-waits",
     [] { return sent(adding(MESSAGE_VERSION_REQUEST, pingOf(1))); }},
    {"IgnoresTheVerdict", "link.refusal-idles",
     [] {
       return received(changing(MESSAGE_VERSION_RESPONSE, [](Frame* frame) {
         if (frame->channel == 0) frame->payload[6] = 0;
       }));
     }},
    {"ServesDiscoveryAfterRefusal", "link.refusal-no-discovery",
     [] {
       return received(changing(MESSAGE_VERSION_RESPONSE, [](Frame* frame) {
         if (frame->channel == 0) frame->payload[6] = 0;
       }));
     }},
    {"ShowsNoCertificate", "link.handshake", host<&HeadUnitFaults::showsCertificate, false>},
    {"DoubledAuthResponse", "link.auth-response", [] { return sent(doubling(MESSAGE_AUTH_RESPONSE)); }},
    {"EncryptedAuthResponse", "link.auth-response",
     [] {
       return sent(
           changing(MESSAGE_AUTH_RESPONSE, [](Frame* frame) { frame->flags |= phone::flagEncrypted; }));
     }},
    {"AcceptsStrangers", "link.stranger-refused",
     [] {
       return sent(rewriting<AuthResponse>(MESSAGE_AUTH_RESPONSE,
                                           [](AuthResponse* answer) { answer->set_status(0); }));
     }},
    {"PlainDiscovery", "link.encrypted",
     [] {
       return sent(changing(MESSAGE_SERVICE_DISCOVERY_RESPONSE, [](Frame* frame) { frame->flags = WHOLE; }));
     }},
};

const Fault DISCOVERY_FAULTS[] = {
    {"TwoResponses", "discovery.once", [] { return sent(doubling(MESSAGE_SERVICE_DISCOVERY_RESPONSE)); }},
    {"NoDriverPosition", "discovery.identity",
     [] { return discovery([](ServiceDiscoveryResponse* car) { car->clear_driver_position(); }); }},
    {"ServicesInReverse", "discovery.ids",
     [] { return discovery([](ServiceDiscoveryResponse* car) { reverse(car->mutable_services()); }); }},
    {"ServiceOfTwoKinds", "discovery.one-kind",
     [] {
       return discovery(
           [](ServiceDiscoveryResponse* car) { car->mutable_services(0)->mutable_phone_status_service(); });
     }},
    {"UnknownField", "discovery.known-fields",
     [] {
       return discovery(
           [](ServiceDiscoveryResponse* car) { car->mutable_unknown_fields()->append("\xf8\x01\x01"); });
     }},
    {"NoDensity", "discovery.video",
     [] {
       return discovery([](ServiceDiscoveryResponse* car) {
         serviceOf(car, VIDEO)->mutable_media_sink_service()->mutable_video_configs(0)->clear_density();
       });
     }},
    {"NoStreamType", "discovery.audio",
     [] {
       return discovery([](ServiceDiscoveryResponse* car) {
         serviceOf(car, MEDIA)->mutable_media_sink_service()->clear_audio_type();
       });
     }},
    {"SensorsInReverse", "discovery.sensors",
     [] {
       return discovery([](ServiceDiscoveryResponse* car) {
         reverse(serviceOf(car, SENSORS)->mutable_sensor_source_service()->mutable_sensors());
       });
     }},
    {"KeycodesInReverse", "discovery.keycodes",
     [] {
       return discovery([](ServiceDiscoveryResponse* car) {
         reverse(serviceOf(car, INPUT)->mutable_input_source_service()->mutable_keycodes_supported());
       });
     }},
    {"PairingMethodTwice", "discovery.pairing-methods",
     [] {
       return discovery([](ServiceDiscoveryResponse* car) {
         serviceOf(car, BLUETOOTH)
             ->mutable_bluetooth_service()
             ->add_supported_pairing_methods(BLUETOOTH_PAIRING_METHOD_4);
       });
     }},
    {"NoImageOptions", "discovery.cluster",
     [] {
       return discovery([](ServiceDiscoveryResponse* car) {
         serviceOf(car, NAVIGATION)->mutable_navigation_status_service()->clear_image_options();
       });
     }},
    {"PackagesSwapped", "discovery.verification",
     [] {
       return discovery([](ServiceDiscoveryResponse* car) {
         reverse(
             serviceOf(car, VERIFICATION)->mutable_vendor_extension_service()->mutable_package_white_list());
       });
     }},
};

const Fault CONTROL_FAULTS[] = {
    {"OtherTimestamp", "ping.timestamp",
     [] {
       return sent(rewriting<PingResponse>(MESSAGE_PING_RESPONSE, [](PingResponse* answer) {
         answer->set_timestamp(answer->timestamp() ^ 1);
       }));
     }},
    {"PingsOutOfOrder", "ping.order", swappingPings},
    {"PingAnsweredTwice", "ping.once", [] { return sent(doubling(MESSAGE_PING_RESPONSE)); }},
    {"NoRefusal", "control.unknown", [] { return sent(dropping(MESSAGE_UNEXPECTED_MESSAGE)); }},
    {"RefusalWithABody", "control.damaged",
     [] {
       return sent(changing(MESSAGE_UNEXPECTED_MESSAGE, [](Frame* frame) { frame->payload.push_back(0); }));
     }},
    {"AudioFocusUnanswered", "focus.audio", host<&HeadUnitFaults::answersAudioFocus, false>},
    {"AudioFocusCalledUnsolicited", "focus.audio", host<&HeadUnitFaults::claimsFocusWasUnasked, true>},
    {"AudioFocusWithoutUnsolicited", "focus.audio",
     [] {
       return sent(rewriting<AudioFocusNotification>(
           MESSAGE_AUDIO_FOCUS_NOTIFICATION,
           [](AudioFocusNotification* focus) { focus->clear_unsolicited(); }));
     }},
    {"NavigationFocusUnanswered", "focus.navigation",
     [] { return sent(dropping(MESSAGE_NAV_FOCUS_NOTIFICATION)); }},
    {"GoodByeUnanswered", "bye.answered", host<&HeadUnitFaults::answersByeBye, false>},
    {"GoodByeWithABody", "bye.answered",
     [] {
       return sent(changing(MESSAGE_BYE_BYE_RESPONSE, [](Frame* frame) {
         phone::append(&frame->payload, {8, 1});
       }));
     }},
};

const Fault FRAME_FAULTS[] = {
    {"PlainServiceFrame", "frames.rules",
     [] { return sent(changing(MESSAGE_CONFIG, [](Frame* frame) { frame->flags = WHOLE; })); }},
    {"WrongFragmentSizes", "frames.rules", [] { return sent(splitTooShort); }},
    {"StrangeFlagBits", "frames.rules",
     [] { return sent(changing(MESSAGE_CONFIG, [](Frame* frame) { frame->flags |= 0x40; })); }},
    {"PassesOverStrayMiddle", "framing.stray-middle",
     [] {
       return received([](Frame frame) -> Frames {
         return frame.kind() == phone::FrameKind::middle ? Frames{} : Frames{frame};
       });
     }},
    {"TakesPlainServiceFrames", "framing.plain-service",
     [] {
       return received([](Frame frame) -> Frames {
         if (frame.channel != 0) frame.flags |= phone::flagEncrypted;
         return {frame};
       });
     }},
    {"PassesOverUnknownChannels", "framing.unknown-channel",
     [] {
       return received([](Frame frame) -> Frames { return frame.channel == 201 ? Frames{} : Frames{frame}; });
     }},
    {"LosesLongMessages", "frames.long",
     [] {
       return received([](Frame frame) -> Frames {
         if (frame.payload.size() > 16000) frame.payload[0] = 0x33;
         return {frame};
       });
     }},
};

const Fault CHANNEL_FAULTS[] = {
    {"OpenResponseIsNoControlFrame", "channel.open",
     [] {
       return sent(changing(MESSAGE_CHANNEL_OPEN_RESPONSE, [](Frame* frame) {
         frame->flags &= static_cast<std::uint8_t>(~phone::flagControl);
       }));
     }},
    {"PlainOpenResponse", "channel.open",
     [] {
       return sent(changing(MESSAGE_CHANNEL_OPEN_RESPONSE,
                            [](Frame* frame) { frame->flags = WHOLE | phone::flagControl; }));
     }},
    {"WrongRefusalOfATakenChannel", "channel.taken",
     [] {
       return sent(
           rewriting<ChannelOpenResponse>(MESSAGE_CHANNEL_OPEN_RESPONSE, [](ChannelOpenResponse* answer) {
             if (answer->status() == STATUS_INVALID_CHANNEL) answer->set_status(STATUS_CHANNEL_REFUSED);
           }));
     }},
    {"AnswersASecondChannel", "channel.one-per-service", answeringEveryOpen},
    {"AnswersForUnknownServices", "channel.no-such-service", answeringEveryOpen},
    {"ChannelNeverCloses", "channel.reopen",
     [] {
       return received([](Frame frame) -> Frames {
         return frame.has(phone::flagControl) && typeOf(frame) == MESSAGE_CHANNEL_CLOSE_NOTIFICATION
                    ? Frames{}
                    : Frames{frame};
       });
     }},
    {"AnswersAClose", "channel.close",
     [] {
       return sent(
           adding(MESSAGE_CHANNEL_OPEN_RESPONSE, phone::messageBytes(MESSAGE_CHANNEL_CLOSE_NOTIFICATION)));
     }},
};

const Fault MEDIA_FAULTS[] = {
    {"ConfigWithoutReady", "video.config",
     [] {
       return sent(rewriting<Config>(MESSAGE_CONFIG,
                                     [](Config* config) { config->set_status(Config_Status_STATUS_WAIT); }));
     }},
    {"NoLimit", "audio.config",
     [] {
       return sent(rewriting<Config>(MESSAGE_CONFIG, [](Config* config) { config->clear_max_unacked(); }));
     }},
    {"IndexThatIsNotOffered", "video.config",
     [] {
       return sent(
           rewriting<Config>(MESSAGE_CONFIG, [](Config* config) { config->add_configuration_indices(9); }));
     }},
    {"FocusBeforeConfig", "video.config-first",
     [] { return sent(swapping(MESSAGE_CONFIG, MESSAGE_VIDEO_FOCUS_NOTIFICATION)); }},
    {"NoAcks", "video.acks", host<&HeadUnitFaults::acknowledgesMedia, false>},
    {"EachUnitAcknowledgedTwice", "audio.acks", host<&HeadUnitFaults::acknowledgesTwice, true>},
    {"AcksOfTheOldSession", "video.acks",
     [] { return sent(rewriting<Ack>(MESSAGE_ACK, [](Ack* ack) { ack->set_session_id(7); })); }},
    {"AcksThatCountNothing", "audio.acks",
     [] { return sent(rewriting<Ack>(MESSAGE_ACK, [](Ack* ack) { ack->clear_ack(); })); }},
    {"TakesAnyCodec", "video.other-codec",
     [] {
       return received(
           rewriting<Setup>(MESSAGE_SETUP, [](Setup* setup) { setup->set_type(MEDIA_CODEC_VIDEO); }));
     }},
    {"VideoFocusWithoutUnsolicited", "video.focus",
     [] {
       return sent(rewriting<VideoFocusNotification>(
           MESSAGE_VIDEO_FOCUS_NOTIFICATION,
           [](VideoFocusNotification* focus) { focus->clear_unsolicited(); }));
     }},
    {"MicrophoneWithoutSession", "microphone.answer",
     [] {
       return sent(rewriting<MicrophoneResponse>(
           MESSAGE_MICROPHONE_RESPONSE, [](MicrophoneResponse* answer) { answer->clear_session_id(); }));
     }},
    {"MicrophoneFloods", "microphone.limit", host<&HeadUnitFaults::floodsMicrophone, true>},
    {"MicrophoneStaysOpen", "microphone.closed", host<&HeadUnitFaults::keepsMicrophoneOn, true>},
    {"MicrophoneTimeStands", "microphone.sound",
     [] {
       return sent(changing(MESSAGE_MEDIA_DATA, [](Frame* frame) {
         std::fill(frame->payload.begin() + 2, frame->payload.begin() + 10, std::uint8_t{0});
       }));
     }},
};

const Fault SENSOR_AND_INPUT_FAULTS[] = {
    {"SensorsUnasked", "sensor.only-requested", host<&HeadUnitFaults::sendsUnaskedSensors, true>},
    {"ValueBeforeResponse", "sensor.response-first",
     [] { return sent(swapping(MESSAGE_SENSOR_RESPONSE, MESSAGE_SENSOR_BATCH)); }},
    {"AcceptsUnlistedSensors", "sensor.unlisted",
     [] {
       return sent(rewriting<SensorResponse>(
           MESSAGE_SENSOR_RESPONSE, [](SensorResponse* answer) { answer->set_status(STATUS_SUCCESS); }));
     }},
    {"RefusesListedSensors", "sensor.listed",
     [] {
       return sent(rewriting<SensorResponse>(MESSAGE_SENSOR_RESPONSE, [](SensorResponse* answer) {
         answer->set_status(STATUS_INVALID_SENSOR);
       }));
     }},
    {"AcceptsAnyKey", "input.unsupported",
     [] {
       return sent(rewriting<KeyBindingResponse>(MESSAGE_KEY_BINDING_RESPONSE,
                                                 [](KeyBindingResponse* answer) { answer->set_status(0); }));
     }},
    {"RefusesAllKeys", "input.bind",
     [] {
       return sent(rewriting<KeyBindingResponse>(
           MESSAGE_KEY_BINDING_RESPONSE,
           [](KeyBindingResponse* answer) { answer->set_status(STATUS_INVALID_KEYCODE); }));
     }},
    {"KeyWithoutBinding", "input.unbound",
     [] { return uponOpening(INPUT, phone::messageBytes(MESSAGE_INPUT_REPORT, keyReport())); }},
};

const Fault SERVICE_FAULTS[] = {
    {"PairingUnanswered", "bluetooth.pairing", host<&HeadUnitFaults::answersPairing, false>},
    {"TunesAnywhere", "radio.out-of-band", host<&HeadUnitFaults::tunesAnywhere, true>},
    {"ScansForEver", "radio.scan", host<&HeadUnitFaults::endsScans, false>},
    {"StationTellsItsFrequency", "radio.station",
     [] {
       return sent(rewriting<RadioStationInfoNotification>(
           MESSAGE_RADIO_STATION_INFO_NOTIFICATION,
           [](RadioStationInfoNotification* station) { station->set_current_frequency_hz(1); }));
     }},
    {"StationWhenSwitchedOff", "radio.power-off",
     [] {
       return sent(rewriting<RadioSetStationResponse>(
           MESSAGE_RADIO_SET_STATION_RESPONSE,
           [](RadioSetStationResponse* answer) { answer->mutable_station_data(); }));
     }},
    {"RefusesGuidance", "navigation.taken",
     [] {
       return received(
           changing(MESSAGE_NAVIGATION_NEXT_TURN_EVENT, [](Frame* frame) { frame->payload[1] = 0x99; }));
     }},
    {"RefusesSongs", "playback.taken",
     [] {
       return received(
           changing(MESSAGE_MEDIA_PLAYBACK_METADATA, [](Frame* frame) { frame->payload[1] = 0x99; }));
     }},
    {"RefusesCalls", "phone.taken",
     [] { return received(changing(MESSAGE_PHONE_STATUS, [](Frame* frame) { frame->payload[1] = 0x99; })); }},
    {"RequestsWithoutStart", "browser.request",
     [] {
       return sent(rewriting<MediaGetNode>(MESSAGE_MEDIA_GET_NODE,
                                           [](MediaGetNode* request) { request->clear_start(); }));
     }},
    {"AcknowledgesUnsubscribed", "notification.unsubscribed", [] { return received(subscribed); }},
    {"TellsHandled", "notification.ack",
     [] {
       return sent(rewriting<GenericNotificationAck>(
           MESSAGE_GENERIC_NOTIFICATION_ACK, [](GenericNotificationAck* ack) { ack->set_handled(true); }));
     }},
    {"StrangeBytesEndTheLink", "vendor.strange-bytes",
     [] {
       return received(changing(
           0x7abc, [](Frame* frame) { frame->flags &= static_cast<std::uint8_t>(~phone::flagEncrypted); }));
     }},
    {"CapturesAnotherSize", "verification.capture", host<&HeadUnitFaults::capturesWrongSize, true>},
    {"ForcedFocusCalledSolicited", "verification.audio-focus",
     [] {
       return sent(rewriting<AudioFocusNotification>(
           MESSAGE_AUDIO_FOCUS_NOTIFICATION,
           [](AudioFocusNotification* focus) { focus->set_unsolicited(false); }));
     }},
    {"ForgetsParkedValues", "verification.parked", [] { return sent(dropping(MESSAGE_SENSOR_BATCH)); }},
    {"BindingsOutliveTheirEnd", "verification.unbound-key",
     [] {
       return received(rewriting<KeyBindingRequest>(
           MESSAGE_KEY_BINDING_REQUEST, [](KeyBindingRequest* request) { request->add_keycodes(3); }));
     }},
    {"EveryKeyIsLong", "verification.key",
     [] {
       return sent(rewriting<InputReport>(MESSAGE_INPUT_REPORT, [](InputReport* report) {
         for (KeyEvent_Key& key : *report->mutable_key_event()->mutable_keys()) key.set_longpress(true);
       }));
     }},
    {"PointersSwapped", "verification.touch",
     [] {
       return sent(rewriting<InputReport>(MESSAGE_INPUT_REPORT, [](InputReport* report) {
         reverse(report->mutable_touch_event()->mutable_pointer_data());
       }));
     }},
};

class VerifyFault : public testing::TestWithParam<Fault> {};

phone::verify::Run runGroupsOf(const Fault& fault) {
  std::vector<std::string> groups = {
      std::string(fault.caughtBy).substr(0, std::string(fault.caughtBy).find('.') + 1)};
  // Only traffic shows whether frames keep their rules.
  if (groups[0] == "frames.") groups = {"video.", "frames."};
  MemoryHeadUnit headUnit(fault.make());
  return phone::verify::runChecks(phone::verify::choose(phone::verify::allChecks(), groups), &headUnit,
                                  phoneCredentials());
}

TEST_P(VerifyFault, IsCaughtByTheCheckThatLooksForIt) {
  const phone::verify::Run run = runGroupsOf(GetParam());
  const Result* check = run.find(GetParam().caughtBy);
  ASSERT_NE(check, nullptr) << "there is no check of this name";
  EXPECT_EQ(check->outcome, Outcome::failed);
  EXPECT_FALSE(check->expected.empty());
  EXPECT_FALSE(check->came.empty());
}

std::string nameOf(const testing::TestParamInfo<Fault>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Link, VerifyFault, testing::ValuesIn(LINK_FAULTS), nameOf);
INSTANTIATE_TEST_SUITE_P(Discovery, VerifyFault, testing::ValuesIn(DISCOVERY_FAULTS), nameOf);
INSTANTIATE_TEST_SUITE_P(Control, VerifyFault, testing::ValuesIn(CONTROL_FAULTS), nameOf);
INSTANTIATE_TEST_SUITE_P(Frames, VerifyFault, testing::ValuesIn(FRAME_FAULTS), nameOf);
INSTANTIATE_TEST_SUITE_P(Channels, VerifyFault, testing::ValuesIn(CHANNEL_FAULTS), nameOf);
INSTANTIATE_TEST_SUITE_P(Media, VerifyFault, testing::ValuesIn(MEDIA_FAULTS), nameOf);
INSTANTIATE_TEST_SUITE_P(SensorsAndInput, VerifyFault, testing::ValuesIn(SENSOR_AND_INPUT_FAULTS), nameOf);
INSTANTIATE_TEST_SUITE_P(Services, VerifyFault, testing::ValuesIn(SERVICE_FAULTS), nameOf);

}  // namespace
}  // namespace test
