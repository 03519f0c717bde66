#include "EveryService.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "AudioSink.h"
#include "AudioSource.h"
#include "BigEndian.h"
#include "BluetoothEndpoint.h"
#include "FixedCredentials.h"
#include "FixedRandom.h"
#include "MediaBrowserEndpoint.h"
#include "MediaPlaybackStatusEndpoint.h"
#include "NavigationStatusEndpoint.h"
#include "NotificationEndpoint.h"
#include "PhoneStatusEndpoint.h"
#include "RadioEndpoint.h"
#include "VantryVerificationVendorExtension.h"
#include "VantryVerificationVendorExtensionCallbackRouter.h"
#include "VideoSink.h"

namespace {

constexpr unsigned char ATOMIC = FRAME_FLAG_FIRST | FRAME_FLAG_LAST;

volatile unsigned int sink;  // what was read goes here, so that reading it is not left out

void readAll(const void* data, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) sink = sink + static_cast<const unsigned char*>(data)[i];
}

void readAll(const std::string& text) { readAll(text.data(), text.size()); }

class Control : public IControllerCallbacks {
 public:
  explicit Control(bool* broken) : broken_(broken) {}
  void serviceDiscoveryRequest(const std::string& small, const std::string& medium, const std::string& large,
                               const std::string& label) override {
    readAll(small + medium + large + label);
  }
  void unrecoverableError() override { *broken_ = true; }
  void pingRequest(long long, bool) override {}
  void pingResponse(long long) override {}
  void navigationFocusRequest(NavFocusType) override {}
  void byeByeRequest(ByeByeReason) override {}
  void byeByeResponse() override {}
  void voiceSessionNotification(VoiceSessionStatus) override {}
  void audioFocusRequest(AudioFocusRequestType) override {}
  void authenticationCompleted(int) override {}
  void versionResponse(unsigned long long, unsigned long long) override {}

 private:
  bool* const broken_;
};

class Video : public IVideoSinkCallbacks {
 public:
  void dataAvailable(int, unsigned long long, shared_ptr<IoBuffer> const&, void* data,
                     unsigned int size) override {
    readAll(data, size);
  }
  void codecConfig(void* data, unsigned int size) override { readAll(data, size); }
  int setup(int) override { return 0; }
  void playbackStart(int) override {}
  void playbackStop(int) override {}
  void mediaConfiguration(int) override {}
  void videoFocusRequest(int, int) override {}
};

class Audio : public IAudioSinkCallbacks {
 public:
  void dataAvailable(int, unsigned long long, shared_ptr<IoBuffer> const&, void* data,
                     unsigned int size) override {
    readAll(data, size);
  }
  void codecConfig(void* data, unsigned int size) override { readAll(data, size); }
  int setup(int type) override { return type == MEDIA_CODEC_1 ? 0 : -1; }
  void playbackStart(int) override {}
  void playbackStop(int) override {}
};

class Microphone : public IAudioSourceCallbacks {
 public:
  void ackReceived(int, unsigned int) override {}
  int microphoneRequest(bool open, bool, bool, int) override { return open ? 5 : -7; }
};

class Bluetooth : public IBluetoothCallbacks {
 public:
  void pairingRequest(std::string const& address, int) override { readAll(address); }
};

class Radio : public IRadioCallbacks {
 public:
  bool setStation(int frequency, bool* hasData, RdsData* data) override {
    *hasData = frequency % 2 == 0;
    data->radioText = "text";
    return frequency > 0;
  }
  void powerOff() override {}
  void scan(bool) override {}
  void stationInfoRequest() override {}
};

class Navigation : public INavigationStatusCallbacks {
 public:
  void navigationStatus(int) override {}
  void navigationNextTurn(const std::string& road, int, int, const std::string& image, int, int) override {
    readAll(road + image);
  }
  void navigationNextTurnDistance(int, int) override {}
};

class Playback : public IMediaPlaybackStatusCallbacks {
 public:
  void mediaPlaybackStatus(MediaPlaybackStatusStruct status) override { readAll(status.mediaSource); }
  void mediaPlaybackMetadata(MediaPlaybackMetadataStruct metadata) override { readAll(metadata.albumArt); }
};

class Phone : public IPhoneStatusCallbacks {
 public:
  void phoneStatus(const PhoneStatusStruct& status) override {
    for (int i = 0; i < status.callCount; ++i)
      readAll(status.calls[i].callerNumber + status.calls[i].callerThumbnail);
    delete[] status.calls;
  }
};

class Browser : public IMediaBrowserCallbacks {
 public:
  void mediaRootNode(const MediaRootNodeStruct& node) override {
    for (unsigned int i = 0; i < node.mediaSourceCount; ++i) readAll(node.mediaSources[i].albumArt);
    delete[] node.mediaSources;
  }
  void mediaSourceNode(const MediaSourceNodeStruct& node) override {
    for (unsigned int i = 0; i < node.listCount; ++i) readAll(node.lists[i].path);
    delete[] node.lists;
  }
  void mediaListNode(const MediaListNodeStruct& node) override {
    for (unsigned int i = 0; i < node.songCount; ++i) readAll(node.songs[i].album);
    delete[] node.songs;
  }
  void mediaSongNode(const MediaSongNodeStruct& node) override { readAll(node.albumArt); }
};

class Notifications : public INotificationCallbacks {
 public:
  void subscriptionChanged(bool) override {}
  void notification(const std::string& text, bool, const std::string& id, bool, unsigned char* icon,
                    unsigned int size) override {
    readAll(text + id);
    readAll(icon, size);
  }
  void notificationAck(const std::string& id) override { readAll(id); }
};

class Verification : public IVantryVerificationCallbacks {
 public:
  int onSetSensor(VantryVerificationSetSensor const& message) override { return use(message); }
  int onVideoFocus(VantryVerificationVideoFocus const& message) override { return use(message); }
  int onInjectInput(VantryVerificationInjectInput const& message) override { return use(message); }
  int onScreenCaptureRequest(VantryVerificationScreenCaptureRequest const& message) override {
    return use(message);
  }
  int onDisplayInformationRequest(VantryVerificationDisplayInformationRequest const& message) override {
    return use(message);
  }
  int onAudioFocus(VantryVerificationAudioFocus const& message) override { return use(message); }

 private:
  static int use(const google::protobuf::MessageLite& message) {
    readAll(message.SerializeAsString());
    return STATUS_SUCCESS;
  }
};

template <class Interface, class Made>
shared_ptr<Interface> hold(Made* made) {
  return shared_ptr<Interface>(made);
}

}  // namespace

EveryService::EveryService() {
  receiver_.init(hold<IControllerCallbacks>(new Control(&broken_)));
  MessageRouter* const router = receiver_.messageRouter();
  int id = 0;
  const auto add = [&](auto* endpoint) {
    endpoints_.emplace_back(endpoint);
    receiver_.registerService(endpoint);
    return endpoint;
  };
  VideoSink* const video = add(new VideoSink(++id, router, hold<IVideoSinkCallbacks>(new Video())));
  video->setGrantFocusOnSetup(true);
  video->setCodecType(MEDIA_CODEC_VIDEO);
  video->addSupportedConfiguration(VIDEO_800x480, 30, 0, 0, 160);
  AudioSink* const audio = add(new AudioSink(++id, router, hold<IAudioSinkCallbacks>(new Audio())));
  audio->setStreamType(AUDIO_STREAM_MEDIA);
  audio->setCodecType(MEDIA_CODEC_1);
  audio->addSupportedConfiguration(48000, 16, 2);
  add(new AudioSource(++id, router, hold<IAudioSourceCallbacks>(new Microphone())));
  sensors_ = add(new SensorSource(++id, router));
  for (int type = SensorType_MIN; type <= SensorType_MAX; ++type) sensors_->registerSensor(type);
  input_ = add(new InputSource(++id, router));
  input_->setSupportedKeycodes({1, 2, 3, 84});
  add(new BluetoothEndpoint(++id, router, hold<IBluetoothCallbacks>(new Bluetooth())));
  add(new RadioEndpoint(++id, router, hold<IRadioCallbacks>(new Radio())));
  add(new NavigationStatusEndpoint(++id, router, hold<INavigationStatusCallbacks>(new Navigation())));
  add(new MediaPlaybackStatusEndpoint(++id, router, hold<IMediaPlaybackStatusCallbacks>(new Playback())));
  add(new PhoneStatusEndpoint(++id, router, hold<IPhoneStatusCallbacks>(new Phone())));
  add(new MediaBrowserEndpoint(++id, router, hold<IMediaBrowserCallbacks>(new Browser())));
  add(new NotificationEndpoint(++id, router, hold<INotificationCallbacks>(new Notifications())));
  add(new VantryVerificationVendorExtension(
      ++id, router,
      hold<IVendorExtensionCallbacks>(new VantryVerificationVendorExtensionCallbackRouter(
          hold<IVantryVerificationCallbacks>(new Verification())))));
}

EveryService::~EveryService() {
  receiver_.prepareShutdown();
  receiver_.shutdown();
}

void EveryService::openAll() {
  for (int service = 1; service <= services(); ++service) {
    const unsigned char channel = static_cast<unsigned char>(service);
    const unsigned char frame[] = {channel, ATOMIC | FRAME_FLAG_CONTROL | FRAME_FLAG_ENCRYPTED,
                                   0,       6,
                                   0,       MESSAGE_CHANNEL_OPEN_REQUEST,
                                   0x08,    0x00,      // priority 0
                                   0x10,    channel};  // service id
    feed(frame, sizeof frame);
  }
}

void EveryService::loadsCredentials() {
  const FixedCredentials& credentials = fixedCredentials();
  FixedRandom::restart(FixedRandom::Side::headUnit);
  FixedRandom::drawsFor(FixedRandom::Side::headUnit);
  if (!receiver_.controller().setClientCreds(credentials.root, credentials.certificate, credentials.key))
    abort();
}

void EveryService::startsUp() {
  receiver_.start();
  drain();
}

bool EveryService::tlsStands() {
  return receiver_.controller().sslWrapper().currentState() == SSL_WRAPPER_CONNECTED;
}

namespace {

/// Whether the control message that begins at `type` is of a type that is none for control frames.
bool isUnknownControl(const unsigned char* type) {
  const unsigned short number = readBigEndian16(type);
  return number != MESSAGE_CHANNEL_OPEN_REQUEST && number != MESSAGE_CHANNEL_CLOSE_NOTIFICATION;
}

bool isControl(const unsigned char* frame, std::size_t size) {
  return size >= 2 && (frame[1] & FRAME_FLAG_CONTROL) != 0;
}

bool isEnciphered(const unsigned char* frame, std::size_t size) {
  return size >= 2 && (frame[1] & FRAME_FLAG_ENCRYPTED) != 0;
}

}  // namespace

bool EveryService::isLeftOut(const unsigned char* frame, std::size_t size) {
  if (size < 6) return false;
  if (size >= 8 && (frame[1] & FRAME_ATOMIC) == FRAME_FIRST && readBigEndian32(frame + 4) > (1U << 20)) {
    return true;
  }
  if (isEnciphered(frame, size) && tlsStands()) return false;  // its type is seen only once it is deciphered
  return isControl(frame, size) && isUnknownControl(frame + 4);
}

void EveryService::takeEncipheredControl(const shared_ptr<IoBuffer>& buffer) {
  // Step by step what ChannelManager::queueIncoming does, so as to look at the type in between.
  ChannelManager& manager = *receiver_.messageRouter()->manager();
  const shared_ptr<Frame> frame(new Frame());
  if (manager.decodeFrame(frame, buffer) == STATUS_FRAMING_ERROR) {
    manager.sendFramingError();
  } else if (frame->length < 2 || !isUnknownControl(frame->payload)) {
    manager.handleChannelControl(frame, buffer);
  }
}

void EveryService::feed(const unsigned char* frame, std::size_t size) {
  if (broken_ || isLeftOut(frame, size)) return;  // a framing error is terminal
  const shared_ptr<IoBuffer> buffer = receiver_.allocateBuffer(static_cast<unsigned int>(size));
  memcpy(buffer->data, frame, size);
  if (isControl(frame, size) && isEnciphered(frame, size) && tlsStands()) {
    takeEncipheredControl(buffer);
  } else {
    receiver_.queueIncoming(buffer);
  }
  drain();
}

void EveryService::feedStream(const unsigned char* data, std::size_t size) {
  constexpr std::size_t HEADER = 4;
  while (size >= HEADER) {
    const int additional = ChannelManager::getAdditionalBytesToRead(data);
    const std::size_t whole = HEADER + static_cast<std::size_t>(additional);
    if (additional < 1 || whole > size) break;
    feed(data, whole);
    data += whole;
    size -= whole;
  }
  if (size > 0) feed(data, size);  // what a host that frames by itself might hand over
}

std::vector<unsigned char> EveryService::takeOutput() {
  drain();
  return std::exchange(output_, {});
}

void EveryService::feedMessage(unsigned char channel, const unsigned char* message, std::size_t size) {
  std::vector<unsigned char> frame(4 + size);
  frame[0] = channel;
  frame[1] = ATOMIC | FRAME_FLAG_ENCRYPTED;
  writeBigEndian16(frame.data() + 2, static_cast<unsigned short>(size));
  if (size > 0) memcpy(frame.data() + 4, message, size);
  feed(frame.data(), frame.size());
}

void EveryService::drain() {
  // A message to oneself on channel 0 marks the end of what is queued, since the last frame has to be waited
  // for.
  static const unsigned char MARK[] = {0x7F, 0x7F};
  unsigned char mark[sizeof MARK];
  memcpy(mark, MARK, sizeof MARK);
  IoBuffer out;
  const int queued = receiver_.messageRouter()->queueOutgoingUnencrypted(0, mark, sizeof mark);
  if (queued != STATUS_SUCCESS) return;  // the phone has closed channel 0
  while (receiver_.getEncodedFrame(&out)) {
    readAll(out.content(), out.size());
    output_.insert(output_.end(), out.content(), out.content() + out.size());
    if (out.size() == 6 && memcmp(out.content() + 4, MARK, sizeof MARK) == 0) {
      output_.resize(output_.size() - out.size());
      break;
    }
  }
}
