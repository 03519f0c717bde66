#include "DataServices.h"

#include <stdexcept>

#include "ServiceIds.h"
#include "VantryVerificationVendorExtensionCallbackRouter.h"
#include "phone/Message.h"

namespace test {
namespace {

bool isOdd(Number n) { return n % 2 != 0; }

/// What every host here has: its part of the arrivals, and its own endpoint for answers.
template <class Endpoint>
struct Host {
  Host(HostArrivals* all, Endpoint* own, int id) : arrivals(all), endpoint(own), service(id) {}
  Arrivals& of(int type) { return arrivals->of(service, type); }

  HostArrivals* const arrivals;
  Endpoint* const endpoint;
  const int service;
};

struct BluetoothHost : IBluetoothCallbacks, Host<BluetoothEndpoint> {
  using Host::Host;
  void pairingRequest(std::string const& phoneAddress, int pairingMethod) override {
    Arrivals& arrived = of(MESSAGE_BLUETOOTH_PAIRING_REQUEST);
    const Number n = arrived.due();
    const BluetoothPairingRequest due = told::pairing(n);
    arrived.takes(phoneAddress == due.phone_address() && pairingMethod == due.pairing_method());
    endpoint->sendPairingResponse(STATUS_SUCCESS, isOdd(n));
    endpoint->sendAuthData(numberedText(n));
  }
};

struct RadioHost : IRadioCallbacks, Host<RadioEndpoint> {
  using Host::Host;
  bool setStation(int frequency, bool* hasRdsData, RdsData* rdsData) override {
    Arrivals& arrived = of(MESSAGE_RADIO_SET_STATION_REQUEST);
    const Number n = arrived.due();
    arrived.takes(frequency == told::station(n).frequency_hz());
    *hasRdsData = true;
    *rdsData = stationData(n);
    return tunesTo(n);
  }
  void powerOff() override {}
  void scan(bool forward) override {
    Arrivals& arrived = of(MESSAGE_RADIO_SCAN_REQUEST);
    const Number n = arrived.due();
    arrived.takes(forward == told::scan(n).forward());
    const RdsData data = stationData(n);
    endpoint->notifyScanComplete(STATUS_SUCCESS, static_cast<int>(n), &data);
  }
  void stationInfoRequest() override {
    Arrivals& arrived = of(MESSAGE_RADIO_STATION_INFO_REQUEST);
    endpoint->sendRdsData(stationData(arrived.due()));
    arrived.takes(true);
  }
};

struct NavigationHost : INavigationStatusCallbacks, Host<NavigationStatusEndpoint> {
  using Host::Host;
  void navigationStatus(int status) override {
    Arrivals& arrived = of(MESSAGE_NAVIGATION_STATUS);
    arrived.takes(status == told::navigation(arrived.due()).status());
  }
  void navigationNextTurn(const std::string& road, int turnSide, int event, const std::string& image,
                          int turnAngle, int turnNumber) override {
    Arrivals& arrived = of(MESSAGE_NAVIGATION_NEXT_TURN_EVENT);
    const NavigationNextTurnEvent due = told::turn(arrived.due());
    arrived.takes(road == due.road() && turnSide == due.turn_side() && event == due.event() &&
                  image == due.image() && turnAngle == due.turn_angle() && turnNumber == due.turn_number());
  }
  void navigationNextTurnDistance(int distanceMeters, int timeToTurnSeconds) override {
    Arrivals& arrived = of(MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT);
    const NavigationNextTurnDistanceEvent due = told::distance(arrived.due());
    arrived.takes(distanceMeters == due.distance_meters() && timeToTurnSeconds == due.time_to_turn_seconds());
  }
};

struct PlaybackHost : IMediaPlaybackStatusCallbacks, Host<MediaPlaybackStatusEndpoint> {
  using Host::Host;
  void mediaPlaybackStatus(MediaPlaybackStatusStruct status) override {
    Arrivals& arrived = of(MESSAGE_MEDIA_PLAYBACK_STATUS);
    const MediaPlaybackStatus due = told::playback(arrived.due());
    arrived.takes(status.state == due.state() && status.mediaSource == due.media_source() &&
                  status.playbackSeconds == due.playback_seconds() && status.shuffle == due.shuffle() &&
                  !status.repeat && !status.repeatOne);
  }
  void mediaPlaybackMetadata(MediaPlaybackMetadataStruct metadata) override {
    Arrivals& arrived = of(MESSAGE_MEDIA_PLAYBACK_METADATA);
    const MediaPlaybackMetadata due = told::song(arrived.due());
    arrived.takes(metadata.song == due.song() && metadata.albumArt == due.album_art() &&
                  metadata.durationSeconds == due.duration_seconds() && metadata.artist.empty());
  }
};

struct CallHost : IPhoneStatusCallbacks, Host<PhoneStatusEndpoint> {
  using Host::Host;
  void phoneStatus(const PhoneStatusStruct& status) override {
    Arrivals& arrived = of(MESSAGE_PHONE_STATUS);
    const PhoneStatus due = told::calls(arrived.due());
    bool same = status.callCount == due.calls_size() && status.signalStrength == due.signal_strength();
    for (int i = 0; same && i < status.callCount; ++i) {
      const PhoneCallStruct& call = status.calls[i];
      same = call.phoneState == due.calls(i).phone_state() &&
             call.callerNumber == due.calls(i).caller_number() &&
             call.callDurationSeconds == due.calls(i).call_duration_seconds();
    }
    arrived.takes(same);
    delete[] status.calls;
  }
};

bool isSame(const MediaListStruct& list, const MediaList& due) {
  return list.path == due.path() && list.type == due.type() && list.name == due.name();
}

bool isSame(const MediaSongStruct& song, const MediaSong& due) {
  return song.path == due.path() && song.name == due.name() && song.artist == due.artist() &&
         song.album.empty();
}

bool isSame(const MediaSourceStruct& source, const MediaSource& due) {
  return source.path == due.path() && source.name == due.name();
}

template <class Struct, class Records>
bool areSame(const Struct* copies, unsigned int count, const Records& due) {
  bool same = count == static_cast<unsigned int>(due.size());
  for (unsigned int i = 0; same && i < count; ++i) same = isSame(copies[i], due.Get(static_cast<int>(i)));
  return same;
}

struct BrowserHost : IMediaBrowserCallbacks, Host<MediaBrowserEndpoint> {
  using Host::Host;
  void mediaRootNode(const MediaRootNodeStruct& node) override {
    Arrivals& arrived = of(MESSAGE_MEDIA_ROOT_NODE);
    const MediaRootNode due = told::rootNode(arrived.due());
    arrived.takes(node.path == due.path() &&
                  areSame(node.mediaSources, node.mediaSourceCount, due.media_sources()));
    delete[] node.mediaSources;
  }
  void mediaSourceNode(const MediaSourceNodeStruct& node) override {
    Arrivals& arrived = of(MESSAGE_MEDIA_SOURCE_NODE);
    const MediaSourceNode due = told::sourceNode(arrived.due());
    arrived.takes(isSame(node.source, due.source()) && node.start == due.start() &&
                  node.total == due.total() && areSame(node.lists, node.listCount, due.lists()));
    delete[] node.lists;
  }
  void mediaListNode(const MediaListNodeStruct& node) override {
    Arrivals& arrived = of(MESSAGE_MEDIA_LIST_NODE);
    const MediaListNode due = told::listNode(arrived.due());
    arrived.takes(isSame(node.list, due.list()) && node.start == due.start() && node.total == due.total() &&
                  areSame(node.songs, node.songCount, due.songs()));
    delete[] node.songs;
  }
  void mediaSongNode(const MediaSongNodeStruct& node) override {
    Arrivals& arrived = of(MESSAGE_MEDIA_SONG_NODE);
    const MediaSongNode due = told::songNode(arrived.due());
    arrived.takes(isSame(node.song, due.song()) && node.albumArt == due.album_art() &&
                  node.durationSeconds == due.duration_seconds());
  }
};

struct NotificationHost : INotificationCallbacks, Host<NotificationEndpoint> {
  using Host::Host;
  void subscriptionChanged(bool) override {}
  void notification(const std::string& text, bool hasId, const std::string& id, bool hasIcon, unsigned char*,
                    unsigned int) override {
    Arrivals& arrived = of(MESSAGE_GENERIC_NOTIFICATION_MESSAGE);
    const GenericNotificationMessage due = told::notification(arrived.due());
    arrived.takes(text == due.text() && hasId && id == due.id() && !hasIcon);
    endpoint->ackNotification(id);
  }
  void notificationAck(const std::string& id) override {
    Arrivals& arrived = of(MESSAGE_GENERIC_NOTIFICATION_ACK);
    arrived.takes(id == told::notificationAck(arrived.due()).id());
  }
};

struct ExtensionHost : IVendorExtensionCallbacks, Host<VendorExtension> {
  using Host::Host;
  int dataAvailable(unsigned char* data, unsigned int length) override {
    Arrivals& arrived = of(0);
    arrived.takes(Bytes(data, length) == numberedContent(arrived.due()));
    return STATUS_SUCCESS;
  }
};

struct VerificationHost : IVantryVerificationCallbacks, Host<VendorExtension> {
  using Host::Host;

  template <class Record>
  int takes(int type, const Record& message, Record (*due)(Number)) {
    Arrivals& arrived = of(type);
    arrived.takes(message.SerializeAsString() == due(arrived.due()).SerializeAsString());
    return STATUS_SUCCESS;
  }
  /// Answers message `asked` by the one of the same number that is to be heard of `answer`.
  int answers(int asked, int answer) {
    Arrivals& arrived = of(asked);
    for (const MessageKind& kind : heardByThePhone()) {
      if (kind.service != service || kind.type != answer) continue;
      Bytes message = kind.message(arrived.due());
      endpoint->sendData(message.data(), static_cast<unsigned int>(message.size()));
    }
    arrived.takes(true);
    return STATUS_SUCCESS;
  }
  int onSetSensor(VantryVerificationSetSensor const& message) override {
    return takes(MESSAGE_VANTRY_VERIFICATION_SET_SENSOR, message, told::setSensor);
  }
  int onVideoFocus(VantryVerificationVideoFocus const& message) override {
    return takes(MESSAGE_VANTRY_VERIFICATION_VIDEO_FOCUS, message, told::videoFocus);
  }
  int onInjectInput(VantryVerificationInjectInput const& message) override {
    return takes(MESSAGE_VANTRY_VERIFICATION_INJECT_INPUT, message, told::injectInput);
  }
  int onAudioFocus(VantryVerificationAudioFocus const& message) override {
    return takes(MESSAGE_VANTRY_VERIFICATION_AUDIO_FOCUS, message, told::audioFocus);
  }
  int onScreenCaptureRequest(VantryVerificationScreenCaptureRequest const&) override {
    return answers(MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_REQUEST,
                   MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_RESPONSE);
  }
  int onDisplayInformationRequest(VantryVerificationDisplayInformationRequest const&) override {
    return answers(MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_REQUEST,
                   MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_RESPONSE);
  }
};

}  // namespace

HostArrivals::HostArrivals() {
  for (const MessageKind& kind : toldByThePhone()) arrivals[{kind.service, kind.type}];
}

class DataServices::RawExtension : public VendorExtension {
 public:
  using VendorExtension::VendorExtension;
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override {
    Service* const service = response->add_services();
    service->set_id(serviceId);
    service->mutable_vendor_extension_service()->set_service_name("test.raw");
  }
};

DataServices::DataServices(MessageRouter* router)
    : bluetooth(BLUETOOTH, router,
                shared_ptr<IBluetoothCallbacks>(new BluetoothHost(arrivals.get(), &bluetooth, BLUETOOTH))),
      radio(RADIO, router, shared_ptr<IRadioCallbacks>(new RadioHost(arrivals.get(), &radio, RADIO))),
      navigation(NAVIGATION, router,
                 shared_ptr<INavigationStatusCallbacks>(
                     new NavigationHost(arrivals.get(), &navigation, NAVIGATION))),
      playback(
          PLAYBACK, router,
          shared_ptr<IMediaPlaybackStatusCallbacks>(new PlaybackHost(arrivals.get(), &playback, PLAYBACK))),
      phone(PHONE, router, shared_ptr<IPhoneStatusCallbacks>(new CallHost(arrivals.get(), &phone, PHONE))),
      browser(BROWSER, router,
              shared_ptr<IMediaBrowserCallbacks>(new BrowserHost(arrivals.get(), &browser, BROWSER))),
      notifications(NOTIFICATIONS, router,
                    shared_ptr<INotificationCallbacks>(
                        new NotificationHost(arrivals.get(), &notifications, NOTIFICATIONS))),
      extension(new RawExtension(
          EXTENSION, router,
          shared_ptr<IVendorExtensionCallbacks>(new ExtensionHost(arrivals.get(), nullptr, EXTENSION)))),
      verification(VERIFICATION, router,
                   shared_ptr<IVendorExtensionCallbacks>(new VantryVerificationVendorExtensionCallbackRouter(
                       shared_ptr<IVantryVerificationCallbacks>(
                           new VerificationHost(arrivals.get(), &verification, VERIFICATION))))) {
  bluetooth.registerCarBluetoothAddress("02:00:00:00:00:01");
  bluetooth.registerPairingMethod(BLUETOOTH_PAIRING_METHOD_2);
}

void DataServices::registersAt(VantryReceiver* receiver) {
  for (ProtocolEndpointBase* endpoint : std::initializer_list<ProtocolEndpointBase*>{
           &bluetooth, &radio, &navigation, &playback, &phone, &browser, &notifications, extension.get(),
           &verification}) {
    if (!receiver->registerService(endpoint)) throw std::runtime_error("a service was refused");
  }
}

void DataServices::talks(Number n) {
  navigation.start();
  navigation.stop();
  playback.reportAction(clusterKey(n));
  phone.reportAction(numberedText(n), numberedText(n + 1), clusterKey(n));
  browser.mediaGetNode(numberedText(n), static_cast<unsigned int>(n), isOdd(n));
  browser.reportAction(numberedText(n), clusterKey(n));
  const GenericNotificationMessage note = told::notification(n);
  notifications.sendNotification(note.text(), true, note.id(), false, nullptr, 0);
  Bytes raw = numberedContent(n);
  extension->sendData(raw.data(), static_cast<unsigned int>(raw.size()));
}

}  // namespace test
