#include <algorithm>
#include <functional>
#include <memory>

#include "AudioSink.h"
#include "BluetoothEndpoint.h"
#include "ManyThreads.h"
#include "MediaBrowserEndpoint.h"
#include "MediaPlaybackStatusEndpoint.h"
#include "NavigationStatusEndpoint.h"
#include "PhoneStatusEndpoint.h"
#include "RadioEndpoint.h"
#include "RecordingEndpoint.h"
#include "ServiceTest.h"
#include "VendorExtension.h"
#include "VideoSink.h"

// What a host may do on any thread, done on many at once while the phone keeps the reader thread busy.
// Sensors and input have threads in tests of their own.

namespace test {
namespace {

constexpr unsigned int THREADS = 4;
constexpr int ROUNDS = 200;

/// Hears everything that these services tell, and keeps nothing.
struct DeafHost : IBluetoothCallbacks,
                  IRadioCallbacks,
                  INavigationStatusCallbacks,
                  IMediaPlaybackStatusCallbacks,
                  IPhoneStatusCallbacks,
                  IMediaBrowserCallbacks,
                  IVendorExtensionCallbacks,
                  IAudioSinkCallbacks,
                  IVideoSinkCallbacks {
  void pairingRequest(std::string const&, int) override {}
  bool setStation(int, bool*, RdsData*) override { return true; }
  void powerOff() override {}
  void scan(bool) override {}
  void stationInfoRequest() override {}
  void navigationStatus(int) override {}
  void navigationNextTurn(const std::string&, int, int, const std::string&, int, int) override {}
  void navigationNextTurnDistance(int, int) override {}
  void mediaPlaybackStatus(MediaPlaybackStatusStruct) override {}
  void mediaPlaybackMetadata(MediaPlaybackMetadataStruct) override {}
  void phoneStatus(const PhoneStatusStruct& status) override { delete[] status.calls; }
  void mediaRootNode(const MediaRootNodeStruct& node) override { delete[] node.mediaSources; }
  void mediaSourceNode(const MediaSourceNodeStruct& node) override { delete[] node.lists; }
  void mediaListNode(const MediaListNodeStruct& node) override { delete[] node.songs; }
  void mediaSongNode(const MediaSongNodeStruct&) override {}
  int dataAvailable(unsigned char*, unsigned int) override { return STATUS_SUCCESS; }
  void dataAvailable(int, unsigned long long, shared_ptr<IoBuffer> const&, void*, unsigned int) override {}
  void codecConfig(void*, unsigned int) override {}
  int setup(int) override { return STATUS_SUCCESS; }
  void playbackStart(int) override {}
  void playbackStop(int) override {}
  void mediaConfiguration(int) override {}
  void videoFocusRequest(int, int) override {}
};

template <class Interface>
shared_ptr<Interface> deafHost() {
  return shared_ptr<Interface>(new DeafHost());
}

struct Pipe : VendorExtension {
  using VendorExtension::VendorExtension;
  void addDiscoveryInfo(ServiceDiscoveryResponse*) override {}
};

/// A service, what the host does with it, the message that each time comes of it, and one that the phone
/// sends meanwhile and that is not answered.
struct HostOperation {
  const char* name;
  std::function<std::unique_ptr<ProtocolEndpointBase>(int, MessageRouter*)> make;
  std::function<void(ProtocolEndpointBase*)> call;
  Bytes message;
  Bytes fromPhone;
};

template <class Endpoint, class Interface>
HostOperation operation(const char* name, const std::function<void(Endpoint*)>& call, const char* message,
                        const char* fromPhone) {
  return {name,
          [](int id, MessageRouter* router) -> std::unique_ptr<ProtocolEndpointBase> {
            return std::make_unique<Endpoint>(id, router, deafHost<Interface>());
          },
          [call](ProtocolEndpointBase* endpoint) { call(static_cast<Endpoint*>(endpoint)); }, bytes(message),
          bytes(fromPhone)};
}

struct HostOperationTest : ServiceTest, testing::WithParamInterface<HostOperation> {
  std::unique_ptr<ProtocolEndpointBase> service = GetParam().make(SERVICE, link.router());
  HostOperationTest() { open(service.get()); }

  /// The host calls on many threads, while the phone does `meanwhile`.
  void callsWhile(const std::function<void()>& meanwhile) {
    onManyThreads(
        THREADS,
        [this](unsigned int) {
          for (int round = 0; round < ROUNDS; ++round) GetParam().call(service.get());
        },
        meanwhile);
  }
};

TEST_P(HostOperationTest, SendsOneWholeMessageForEachCallWhileThePhoneSends) {
  callsWhile([this] { sends(GetParam().fromPhone); });
  EXPECT_EQ(sent(), std::vector<Bytes>(THREADS * ROUNDS, GetParam().message));
}

TEST_P(HostOperationTest, SurvivesAChannelThatClosesAndOpens) {
  const Bytes openRequest = message(MESSAGE_CHANNEL_OPEN_REQUEST, bytes("08 00 10 07"));
  callsWhile([&] {
    close();
    link.feeds(frame(CHANNEL, ATOMIC | CONTROL | ENCRYPTED, openRequest));
  });
  sent();
  GetParam().call(service.get());
  EXPECT_EQ(sent(), std::vector<Bytes>{GetParam().message});
}

INSTANTIATE_TEST_SUITE_P(
    Each, HostOperationTest,
    testing::Values(operation<BluetoothEndpoint, IBluetoothCallbacks>(
                        "PairingResponse", [](auto* it) { it->onReadyForPairing(true); }, "80 02 08 00 10 01",
                        "80 01 0A 01 41 10 02"),
                    operation<BluetoothEndpoint, IBluetoothCallbacks>(
                        "AuthenticationData", [](auto* it) { it->sendAuthData("12"); }, "80 03 0A 02 31 32",
                        "80 01 0A 01 41 10 02"),
                    operation<RadioEndpoint, IRadioCallbacks>(
                        "RdsData",
                        [](auto* it) {
                          RdsData data;
                          data.radioText = "RT";
                          it->sendRdsData(data);
                        },
                        "80 04 2A 02 52 54", "80 03"),
                    operation<RadioEndpoint, IRadioCallbacks>(
                        "ScanComplete", [](auto* it) { it->notifyScanComplete(0, 300, nullptr); },
                        "80 02 08 00 10 AC 02", "80 03"),
                    operation<NavigationStatusEndpoint, INavigationStatusCallbacks>(
                        "NavigationStart", [](auto* it) { it->start(); }, "80 01", "80 05 08 01 10 02"),
                    operation<NavigationStatusEndpoint, INavigationStatusCallbacks>(
                        "NavigationStop", [](auto* it) { it->stop(); }, "80 02", "80 05 08 01 10 02"),
                    operation<MediaPlaybackStatusEndpoint, IMediaPlaybackStatusCallbacks>(
                        "PlaybackAction", [](auto* it) { it->reportAction(5); }, "80 02 08 05",
                        "80 03 0A 01 41"),
                    operation<PhoneStatusEndpoint, IPhoneStatusCallbacks>(
                        "PhoneAction", [](auto* it) { it->reportAction("", "", 5); }, "80 02 0A 02 08 05",
                        "80 01 0A 04 08 01 10 00"),
                    operation<MediaBrowserEndpoint, IMediaBrowserCallbacks>(
                        "BrowserRequest", [](auto* it) { it->mediaGetNode("A", 1, true); },
                        "80 05 0A 01 41 10 01 18 01", "80 02 0A 04 0A 00 12 00"),
                    operation<MediaBrowserEndpoint, IMediaBrowserCallbacks>(
                        "BrowserAction", [](auto* it) { it->reportAction("A", 5); },
                        "80 06 0A 02 08 05 12 01 41", "80 02 0A 04 0A 00 12 00"),
                    operation<VideoSink, IVideoSinkCallbacks>(
                        "VideoFocus", [](auto* it) { it->setVideoFocus(2, true); }, "80 08 08 02 10 01",
                        "80 07 10 01 18 02"),
                    operation<Pipe, IVendorExtensionCallbacks>(
                        "VendorData",
                        [](auto* it) {
                          Bytes data = bytes("CA FE");
                          it->sendData(data.data(), 2);
                        },
                        "CA FE", "01 02 03")),
    [](const auto& each) { return std::string(each.param.name); });

struct HostThreadsTest : ServiceTest {};

TEST_F(HostThreadsTest, AChannelIsClosedThoughManyThreadsCloseItAndThePhoneSends) {
  constexpr int CHANNELS = 20;
  std::vector<std::unique_ptr<RecordingEndpoint>> services;
  for (int number = 1; number <= CHANNELS; ++number) {
    services.push_back(std::make_unique<RecordingEndpoint>(number, link.router()));
    link.registers(services.back().get());
    EXPECT_EQ(link.opens(number, number), STATUS_SUCCESS);
  }
  const auto everyService = [&](auto&& action) {
    for (int number = 1; number <= CHANNELS; ++number) action(number);
  };
  onManyThreads(
      THREADS,
      [&](unsigned int) {
        everyService([&](int number) { link.router()->closeChannel(static_cast<unsigned char>(number)); });
      },
      [&] { everyService([&](int number) { link.sends(number, bytes("80 01")); }); });

  everyService([&](int number) {
    SCOPED_TRACE(number);
    const std::vector<Bytes> notifications = link.sent(number);
    EXPECT_GE(notifications.size(), 1U);
    EXPECT_THAT(notifications, testing::Each(bytes("00 09")));
    const std::vector<Bytes>& received = services[static_cast<std::size_t>(number) - 1]->messages;
    const std::size_t before = received.size();
    link.sends(number, bytes("80 01"));
    EXPECT_EQ(received.size(), before) << "what comes now is dropped";
  });
}

TEST_F(HostThreadsTest, NoConfigIsMixedOfTwoChoicesOfConfigurations) {
  AudioSink sink(SERVICE, link.router(), deafHost<IAudioSinkCallbacks>());
  sink.addSupportedConfiguration(48000, 16, 2);
  sink.addSupportedConfiguration(16000, 16, 1);
  open(&sink);
  onManyThreads(
      THREADS,
      [&](unsigned int thread) {
        unsigned int choice[] = {1, 0};
        for (int round = 0; round < ROUNDS; ++round) {
          if (thread % 2 == 0) {
            sink.sendConfig(Config::STATUS_READY);
          } else {
            EXPECT_TRUE(sink.resetAllowedConfigurations(choice, static_cast<unsigned int>(round) % 3));
          }
        }
      },
      [&] { sends(message(MESSAGE_SETUP, bytes("08 01"))); });
  const std::vector<Bytes> configs = sent();
  EXPECT_GT(configs.size(), THREADS / 2 * ROUNDS);
  EXPECT_THAT(configs, testing::Each(testing::AnyOf(bytes("80 03 08 02 10 01 18 00 18 01"),  // all
                                                    bytes("80 03 08 02 10 01 18 01"),        // the second
                                                    bytes("80 03 08 02 10 01 18 01 18 00"))));
}

}  // namespace
}  // namespace test
