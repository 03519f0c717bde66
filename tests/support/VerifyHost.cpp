#include "VerifyHost.h"

#include "AudioSink.h"
#include "AudioSource.h"
#include "BluetoothEndpoint.h"
#include "IAudioSinkCallbacks.h"
#include "IAudioSourceCallbacks.h"
#include "IBluetoothCallbacks.h"
#include "IMediaBrowserCallbacks.h"
#include "IMediaPlaybackStatusCallbacks.h"
#include "INavigationStatusCallbacks.h"
#include "INotificationCallbacks.h"
#include "IPhoneStatusCallbacks.h"
#include "IRadioCallbacks.h"
#include "IVantryVerificationCallbacks.h"
#include "IVideoSinkCallbacks.h"
#include "InputSource.h"
#include "MediaBrowserEndpoint.h"
#include "MediaPlaybackStatusEndpoint.h"
#include "NavigationStatusEndpoint.h"
#include "NotificationEndpoint.h"
#include "PhoneStatusEndpoint.h"
#include "RadioEndpoint.h"
#include "SensorSource.h"
#include "VantryReceiver.h"
#include "VantryVerificationVendorExtension.h"
#include "VantryVerificationVendorExtensionCallbackRouter.h"
#include "VideoSink.h"

namespace test {

namespace {

constexpr int BAND_START = 87'500'000;
constexpr int BAND_END = 108'000'000;
constexpr int SESSION = 5;

struct ControlHost : IControllerCallbacks {
  Controller* controller = nullptr;
  const HeadUnitFaults* faults = nullptr;
  bool failed = false;
  bool leaving = false;

  void serviceDiscoveryRequest(const std::string&, const std::string&, const std::string&,
                               const std::string&) override {}
  void unrecoverableError() override { failed = true; }
  void pingRequest(long long, bool) override {}
  void pingResponse(long long) override {}
  void navigationFocusRequest(NavFocusType type) override { controller->setNavigationFocus(type); }
  void byeByeRequest(ByeByeReason) override {
    if (faults->answersByeBye) controller->sendByeByeResponse();
    leaving = true;
  }
  void byeByeResponse() override {}
  void voiceSessionNotification(VoiceSessionStatus) override {}
  void audioFocusRequest(AudioFocusRequestType) override {
    if (faults->answersAudioFocus)
      controller->setAudioFocus(AUDIO_FOCUS_STATE_1, faults->claimsFocusWasUnasked);
  }
  void authenticationCompleted(int) override {}
  void versionResponse(unsigned long long, unsigned long long) override {}
};

void acknowledge(MediaSinkBase* sink, const HeadUnitFaults& faults, int session) {
  if (faults.acknowledgesMedia) sink->ackFrames(session, 1);
  if (faults.acknowledgesTwice) sink->ackFrames(session, 1);
}

struct VideoHost : IVideoSinkCallbacks {
  VideoSink* sink = nullptr;
  const HeadUnitFaults* faults = nullptr;
  void dataAvailable(int session, unsigned long long, shared_ptr<IoBuffer> const&, void*,
                     unsigned int) override {
    acknowledge(sink, *faults, session);
  }
  void codecConfig(void*, unsigned int) override {}
  int setup(int) override { return 0; }
  void playbackStart(int) override {}
  void playbackStop(int) override {}
  void mediaConfiguration(int) override {}
  void videoFocusRequest(int mode, int) override { sink->setVideoFocus(mode, false); }
};

struct AudioHost : IAudioSinkCallbacks {
  AudioSink* sink = nullptr;
  const HeadUnitFaults* faults = nullptr;
  void dataAvailable(int session, unsigned long long, shared_ptr<IoBuffer> const&, void*,
                     unsigned int) override {
    acknowledge(sink, *faults, session);
  }
  void codecConfig(void*, unsigned int) override {}
  int setup(int) override { return 0; }
  void playbackStart(int) override {}
  void playbackStop(int) override {}
};

struct MicrophoneHost : IAudioSourceCallbacks {
  AudioSource* source = nullptr;
  const HeadUnitFaults* faults = nullptr;
  bool open = false;
  int room = 0;
  unsigned long long time = 0;

  void ackReceived(int, unsigned int ack) override { room += static_cast<int>(ack); }
  int microphoneRequest(bool wanted, bool, bool, int maxUnacked) override {
    if (wanted) room = faults->floodsMicrophone ? maxUnacked + 3 : maxUnacked;
    open = wanted || faults->keepsMicrophoneOn;
    return SESSION;
  }
  bool work() {
    if (!open || room <= 0) return false;
    --room;
    source->send(time += 20'000, shared_ptr<IoBuffer>(new IoBuffer(640)));
    return true;
  }
};

struct BluetoothHost : IBluetoothCallbacks {
  BluetoothEndpoint* endpoint = nullptr;
  const HeadUnitFaults* faults = nullptr;
  void pairingRequest(std::string const&, int) override {
    if (!faults->answersPairing) return;
    endpoint->onReadyForPairing(false);
    endpoint->sendAuthData("1234");
  }
};

struct RadioHost : IRadioCallbacks {
  RadioEndpoint* endpoint = nullptr;
  const HeadUnitFaults* faults = nullptr;
  bool setStation(int frequency, bool*, RdsData*) override {
    return faults->tunesAnywhere || (frequency >= BAND_START && frequency <= BAND_END);
  }
  void powerOff() override {}
  void scan(bool) override {
    if (faults->endsScans) endpoint->notifyScanComplete(0, BAND_START, nullptr);
  }
  void stationInfoRequest() override {
    RdsData data;
    data.programService = "HARBOUR";
    endpoint->sendRdsData(data);
  }
};

struct NavigationHost : INavigationStatusCallbacks {
  void navigationStatus(int) override {}
  void navigationNextTurn(const std::string&, int, int, const std::string&, int, int) override {}
  void navigationNextTurnDistance(int, int) override {}
};

struct PlaybackHost : IMediaPlaybackStatusCallbacks {
  void mediaPlaybackStatus(MediaPlaybackStatusStruct) override {}
  void mediaPlaybackMetadata(MediaPlaybackMetadataStruct) override {}
};

struct CallHost : IPhoneStatusCallbacks {
  void phoneStatus(const PhoneStatusStruct& status) override { delete[] status.calls; }
};

struct BrowserHost : IMediaBrowserCallbacks {
  void mediaRootNode(const MediaRootNodeStruct& node) override { delete[] node.mediaSources; }
  void mediaSourceNode(const MediaSourceNodeStruct& node) override { delete[] node.lists; }
  void mediaListNode(const MediaListNodeStruct& node) override { delete[] node.songs; }
  void mediaSongNode(const MediaSongNodeStruct&) override {}
};

struct NotificationHost : INotificationCallbacks {
  NotificationEndpoint* endpoint = nullptr;
  void subscriptionChanged(bool) override {}
  void notification(const std::string&, bool hasId, const std::string& id, bool, unsigned char*,
                    unsigned int) override {
    if (hasId) endpoint->ackNotification(id);
  }
  void notificationAck(const std::string&) override {}
};

// Asks for the top of the tree as soon as it can.
struct EagerBrowser : MediaBrowserEndpoint {
  using MediaBrowserEndpoint::MediaBrowserEndpoint;
  void onChannelOpened(unsigned char channel) override {
    MediaBrowserEndpoint::onChannelOpened(channel);
    mediaGetNode("", 0, true);
  }
};

struct EagerNavigation : NavigationStatusEndpoint {
  using NavigationStatusEndpoint::NavigationStatusEndpoint;
  void onChannelOpened(unsigned char channel) override {
    NavigationStatusEndpoint::onChannelOpened(channel);
    start();
  }
};

// Tells of itself, asked or not.
struct EagerSensors : SensorSource {
  using SensorSource::SensorSource;
  bool unasked = false;
  void onChannelOpened(unsigned char channel) override {
    SensorSource::onChannelOpened(channel);
    SensorBatch batch;
    batch.add_rpm_data()->set_rpm_e3(1);
    if (unasked) sendSensorBatch(batch);
  }
};

// The head of a PNG file, which tells its size.
std::string pngOf(int width, int height) {
  std::string png("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16);
  for (const int size : {width, height}) {
    for (const int shift : {24, 16, 8, 0}) png += static_cast<char>(size >> shift & 0xff);
  }
  return png + std::string("\x08\x02\0\0\0", 5);
}

struct VerificationHost : IVantryVerificationCallbacks {
  VantryVerificationVendorExtension* extension = nullptr;
  SensorSource* sensors = nullptr;
  InputSource* input = nullptr;
  VideoSink* video = nullptr;
  Controller* controller = nullptr;
  const HeadUnitFaults* faults = nullptr;

  void reply(std::uint16_t type, const google::protobuf::MessageLite& record) {
    phone::Bytes message = phone::messageBytes(type, record);
    extension->sendData(message.data(), static_cast<unsigned int>(message.size()));
  }
  int onSetSensor(VantryVerificationSetSensor const& message) override {
    for (const SpeedData& one : message.sensors().speed_data()) sensors->reportSpeedData(one.speed_e3());
    for (const RpmData& one : message.sensors().rpm_data()) sensors->reportRpmData(one.rpm_e3());
    return STATUS_SUCCESS;
  }
  int onVideoFocus(VantryVerificationVideoFocus const& message) override {
    video->setVideoFocus(message.video_focus_mode(), message.unsolicited());
    return STATUS_SUCCESS;
  }
  int onInjectInput(VantryVerificationInjectInput const& message) override {
    const InputReport& report = message.input();
    for (const KeyEvent_Key& key : report.key_event().keys()) {
      input->reportKey(report.timestamp(), key.keycode(), key.down(), key.metastate());
    }
    if (report.has_touch_event()) touch(report);
    return STATUS_SUCCESS;
  }
  void touch(const InputReport& report) {
    std::vector<unsigned int> ids, xs, ys;
    for (const TouchEvent_Pointer& pointer : report.touch_event().pointer_data()) {
      ids.push_back(pointer.pointer_id());
      xs.push_back(pointer.x());
      ys.push_back(pointer.y());
    }
    input->reportTouch(report.timestamp(), static_cast<int>(ids.size()), ids.data(), xs.data(), ys.data(),
                       report.touch_event().action(), static_cast<int>(report.touch_event().action_index()));
  }
  int onScreenCaptureRequest(VantryVerificationScreenCaptureRequest const&) override {
    VantryVerificationScreenCaptureResponse answer;
    answer.set_screen_capture(pngOf(800, faults->capturesWrongSize ? 479 : 480));
    reply(MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_RESPONSE, answer);
    return STATUS_SUCCESS;
  }
  int onDisplayInformationRequest(VantryVerificationDisplayInformationRequest const&) override {
    VantryVerificationDisplayInformationResponse answer;
    answer.set_native_width(800);
    answer.set_native_height(480);
    reply(MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_RESPONSE, answer);
    return STATUS_SUCCESS;
  }
  int onAudioFocus(VantryVerificationAudioFocus const& message) override {
    controller->setAudioFocus(message.audio_focus_state(), message.unsolicited());
    return STATUS_SUCCESS;
  }
};

/// An extension of a vendor of its own, which takes whatever comes.
struct PlainExtension : VendorExtension {
  using VendorExtension::VendorExtension;
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override {
    Service* const service = response->add_services();
    service->set_id(id());
    service->mutable_vendor_extension_service()->set_service_name("test.plain");
  }
};

struct TakingHost : IVendorExtensionCallbacks {
  int dataAvailable(unsigned char*, unsigned int) override { return STATUS_SUCCESS; }
};

}  // namespace

struct VerifyHost::Parts {
  explicit Parts(const HeadUnitFaults& wanted) : faults(wanted) {
    receiver.init(shared_ptr<IControllerCallbacks>(control));
    control->controller = &receiver.controller();
    control->faults = &faults;
    setUpMedia();
    setUpCar();
    setUpCluster();
    setUpVerification();
    const TestCredentials& known = credentials();
    EXPECT_TRUE(
        receiver.controller().setClientCreds(known.root, known.headUnit.certificate, known.headUnit.key));
    for (ProtocolEndpointBase* endpoint : std::vector<ProtocolEndpointBase*>{
             &video, &media, &guidance, &microphone, &sensors, &input, &bluetooth, &radio, &navigation,
             &playback, &phone, &browser, &notifications, &verification, &extension}) {
      EXPECT_TRUE(receiver.registerService(endpoint));
    }
    receiver.start();
  }

  void setUpMedia() {
    videoHost->sink = &video;
    videoHost->faults = &faults;
    video.setCodecType(MEDIA_CODEC_VIDEO);
    video.setMaxUnacked(2);
    video.setGrantFocusOnSetup(true);
    video.addSupportedConfiguration(VIDEO_800x480, 30, 0, 0, 160);
    for (const auto& [sink, host] : {std::pair(&media, mediaHost), std::pair(&guidance, guidanceHost)}) {
      host->sink = sink;
      host->faults = &faults;
      sink->setMaxUnacked(3);
    }
    media.setStreamType(AUDIO_STREAM_MEDIA);
    media.addSupportedConfiguration(48'000, 16, 2);
    guidance.setStreamType(AUDIO_STREAM_GUIDANCE);
    guidance.addSupportedConfiguration(16'000, 16, 1);
    microphoneHost->source = &microphone;
    microphoneHost->faults = &faults;
    microphone.setConfig(16'000, 16, 1);
  }

  void setUpCar() {
    for (const int type : {SENSOR_SPEED, SENSOR_RPM, SENSOR_NIGHT_MODE}) sensors.registerSensor(type);
    sensors.unasked = faults.sendsUnaskedSensors;
    sensors.reportSpeedData(13'900);
    sensors.reportNightModeData(true);
    input.setTouchScreenPresent(true);
    input.setTouchScreenWidth(800);
    input.setTouchScreenHeight(480);
    input.setSupportedKeycodes({3, 4, 19, 20});
    bluetoothHost->endpoint = &bluetooth;
    bluetoothHost->faults = &faults;
    bluetooth.registerCarBluetoothAddress("02:00:00:00:00:01");
    bluetooth.registerPairingMethod(BLUETOOTH_PAIRING_METHOD_2);
    bluetooth.registerPairingMethod(BLUETOOTH_PAIRING_METHOD_4);
    radioHost->endpoint = &radio;
    radioHost->faults = &faults;
    radio.setStartFrequencyHz(BAND_START);
    radio.setEndFrequencyHz(BAND_END);
    radio.setChannelSpacingHz(100'000);
  }

  void setUpCluster() {
    navigation.setInstrumentClusterType(NavigationStatusService_InstrumentClusterType_IMAGE);
    navigation.setImageHeight(64);
    navigation.setImageWidth(64);
    navigation.setImageColourDepthBits(24);
    notificationHost->endpoint = &notifications;
  }

  void setUpVerification() {
    verificationHost->extension = &verification;
    verificationHost->sensors = &sensors;
    verificationHost->input = &input;
    verificationHost->video = &video;
    verificationHost->controller = &receiver.controller();
    verificationHost->faults = &faults;
  }

  MessageRouter* router() { return receiver.messageRouter(); }

  HeadUnitFaults faults;
  VantryReceiver receiver;
  // Each is owned by the endpoint that gets it.
  ControlHost* control = new ControlHost;
  VideoHost* videoHost = new VideoHost;
  AudioHost* mediaHost = new AudioHost;
  AudioHost* guidanceHost = new AudioHost;
  MicrophoneHost* microphoneHost = new MicrophoneHost;
  BluetoothHost* bluetoothHost = new BluetoothHost;
  RadioHost* radioHost = new RadioHost;
  NotificationHost* notificationHost = new NotificationHost;
  VerificationHost* verificationHost = new VerificationHost;

  VideoSink video{VIDEO, router(), shared_ptr<IVideoSinkCallbacks>(videoHost)};
  AudioSink media{MEDIA, router(), shared_ptr<IAudioSinkCallbacks>(mediaHost)};
  AudioSink guidance{GUIDANCE, router(), shared_ptr<IAudioSinkCallbacks>(guidanceHost)};
  AudioSource microphone{MICROPHONE, router(), shared_ptr<IAudioSourceCallbacks>(microphoneHost)};
  EagerSensors sensors{SENSORS, router()};
  InputSource input{INPUT, router()};
  BluetoothEndpoint bluetooth{BLUETOOTH, router(), shared_ptr<IBluetoothCallbacks>(bluetoothHost)};
  RadioEndpoint radio{RADIO, router(), shared_ptr<IRadioCallbacks>(radioHost)};
  EagerNavigation navigation{NAVIGATION, router(),
                             shared_ptr<INavigationStatusCallbacks>(new NavigationHost)};
  MediaPlaybackStatusEndpoint playback{PLAYBACK, router(),
                                       shared_ptr<IMediaPlaybackStatusCallbacks>(new PlaybackHost)};
  PhoneStatusEndpoint phone{PHONE, router(), shared_ptr<IPhoneStatusCallbacks>(new CallHost)};
  EagerBrowser browser{BROWSER, router(), shared_ptr<IMediaBrowserCallbacks>(new BrowserHost)};
  NotificationEndpoint notifications{NOTIFICATIONS, router(),
                                     shared_ptr<INotificationCallbacks>(notificationHost)};
  VantryVerificationVendorExtension verification{
      VERIFICATION, router(),
      shared_ptr<IVendorExtensionCallbacks>(new VantryVerificationVendorExtensionCallbackRouter(
          shared_ptr<IVantryVerificationCallbacks>(verificationHost)))};
  PlainExtension extension{EXTENSION, router(), shared_ptr<IVendorExtensionCallbacks>(new TakingHost)};
};

VerifyHost::VerifyHost(const HeadUnitFaults& faults) : parts_(new Parts(faults)) {}

VerifyHost::~VerifyHost() {
  parts_->receiver.prepareShutdown();
  parts_->receiver.shutdown();
}

bool VerifyHost::takeFrame(phone::Bytes* wireFrame) {
  IoBuffer out;
  ChannelManager* manager = parts_->router()->manager();
  if (!manager->isRunning() || !manager->extractEncodedFrame(&out)) return false;
  wireFrame->assign(out.content(), out.content() + out.size());
  return true;
}

void VerifyHost::giveFrame(const phone::Bytes& wireFrame) {
  const shared_ptr<IoBuffer> buffer =
      parts_->receiver.allocateBuffer(static_cast<unsigned int>(wireFrame.size()));
  std::copy(wireFrame.begin(), wireFrame.end(), buffer->content());
  parts_->receiver.queueIncoming(buffer);
}

bool VerifyHost::work() { return parts_->microphoneHost->work(); }

bool VerifyHost::hasStopped() const { return parts_->control->failed || parts_->control->leaving; }

}  // namespace test
