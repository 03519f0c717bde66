#include "FullHeadUnit.h"

#include <stdexcept>

#include "NumberedSensors.h"
#include "TestCredentials.h"

namespace test {
namespace {

constexpr PointerAction ACTIONS[] = {POINTER_ACTION_0, POINTER_ACTION_1, POINTER_ACTION_2, POINTER_ACTION_5,
                                     POINTER_ACTION_6};

PointerAction actionOf(std::uint64_t number) { return ACTIONS[number % 5]; }

void require(bool done) {
  if (!done) throw std::runtime_error("the head unit could not be built");
}

}  // namespace

void reportTouch(InputSource* input, std::uint64_t number) {
  const auto n = static_cast<unsigned int>(number);
  const unsigned int ids[] = {0, 1 + n % 9};
  const unsigned int x[] = {n, n + 1};
  const unsigned int y[] = {n + 2, n + 3};
  input->reportTouch(number, 1 + static_cast<int>(n % 2), ids, x, y, actionOf(number),
                     static_cast<int>(n % 2));
}

InputReport touchReport(std::uint64_t number) {
  const auto n = static_cast<unsigned int>(number);
  InputReport report;
  report.set_timestamp(number);
  TouchEvent* const event = report.mutable_touch_event();
  for (unsigned int i = 0; i <= n % 2; ++i) {
    TouchEvent_Pointer* const pointer = event->add_pointer_data();
    pointer->set_x(n + i);
    pointer->set_y(n + 2 + i);
    pointer->set_pointer_id(i == 0 ? 0 : 1 + n % 9);
  }
  event->set_action_index(n % 2);
  event->set_action(actionOf(number));
  return report;
}

const std::set<int>& keysOfFullHeadUnit() {
  static const std::set<int> keys = {3, 4, 5, 6, 19, 20};
  return keys;
}

void reportKey(InputSource* input, std::uint64_t number) {
  const auto n = static_cast<unsigned int>(number);
  input->reportKey(number, 3 + n % 4, n % 2 != 0, n);
}

InputReport keyReport(std::uint64_t number) {
  const auto n = static_cast<unsigned int>(number);
  InputReport report;
  report.set_timestamp(number);
  KeyEvent_Key* const key = report.mutable_key_event()->add_keys();
  key->set_keycode(3 + n % 4);
  key->set_down(n % 2 != 0);
  key->set_metastate(n);
  key->set_longpress(false);
  return report;
}

FullHeadUnit::FullHeadUnit()
    : players_{new NumberedPlayer, new NumberedPlayer, new NumberedPlayer, new NumberedPlayer,
               new NumberedPlayer},
      video(VIDEO, router(), shared_ptr<IVideoSinkCallbacks>(players_[0])),
      media(MEDIA, router(), shared_ptr<IAudioSinkCallbacks>(players_[1])),
      guidance(GUIDANCE, router(), shared_ptr<IAudioSinkCallbacks>(players_[2])),
      system(SYSTEM, router(), shared_ptr<IAudioSinkCallbacks>(players_[3])),
      telephony(TELEPHONY, router(), shared_ptr<IAudioSinkCallbacks>(players_[4])) {
  receiver.init(shared_ptr<IControllerCallbacks>(control));
  setUpSinks();
  setUpCar();
  const TestCredentials& known = credentials();
  require(receiver.controller().setClientCreds(known.root, known.headUnit.certificate, known.headUnit.key));
  for (ProtocolEndpointBase* endpoint : std::initializer_list<ProtocolEndpointBase*>{
           &video, &media, &guidance, &system, &telephony, &microphone, &sensors, &input}) {
    require(receiver.registerService(endpoint));
  }
  data.registersAt(&receiver);
}

void FullHeadUnit::setUpSinks() {
  video.setCodecType(MEDIA_CODEC_VIDEO);
  video.addSupportedConfiguration(VIDEO_800x480, 30, 0, 0, 160);
  media.setStreamType(AUDIO_STREAM_MEDIA);
  guidance.setStreamType(AUDIO_STREAM_GUIDANCE);
  system.setStreamType(AUDIO_STREAM_SYSTEM_AUDIO);
  telephony.setStreamType(AUDIO_STREAM_TELEPHONY);
  for (AudioSink* sink : {&media, &guidance, &system, &telephony})
    sink->addSupportedConfiguration(16000, 16, 1);
  int id = VIDEO;
  for (MediaSinkBase* sink :
       std::initializer_list<MediaSinkBase*>{&video, &media, &guidance, &system, &telephony}) {
    sink->setMaxUnacked(LIMIT);
    playerOf(id++).plays(sink, LIMIT);
  }
}

void FullHeadUnit::setUpCar() {
  microphone.setConfig(16000, 16, 1);
  for (int type = 1; type <= SENSOR_TYPES; ++type) sensors.registerSensor(type);
  input.setSupportedKeycodes(keysOfFullHeadUnit());
  input.setTouchScreenPresent(true);
  input.setTouchScreenWidth(800);
  input.setTouchScreenHeight(480);
}

void FullHeadUnit::starts(Transport* transport) {
  transport_ = transport;
  control->onByeBye = [this] { receiver.controller().sendByeByeResponse(); };
  control->onFailure = [transport] { transport->requestStop(); };
  require(transport->start());
  receiver.start();
}

void FullHeadUnit::ends() {
  if (over_) return;
  over_ = true;
  if (transport_ != nullptr) {
    transport_->requestStop();
    transport_->waitForExit();
  }
  for (NumberedPlayer* player : players_) player->ends();
  receiver.shutdown();
}

}  // namespace test
