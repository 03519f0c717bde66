#include "BluetoothEndpoint.h"

#include "ServiceTest.h"

namespace test {
namespace {

struct MockBluetoothCallbacks : IBluetoothCallbacks {
  MOCK_METHOD(void, pairingRequest, (std::string const&, int), (override));
};

struct BluetoothEndpointTest : ServiceTest {
  shared_ptr<IBluetoothCallbacks> held;
  MockBluetoothCallbacks& host = strict<MockBluetoothCallbacks>(&held);
  BluetoothEndpoint bluetooth{SERVICE, link.router(), held};
  BluetoothEndpointTest() { open(&bluetooth); }
};

const Bytes PAIRING_REQUEST = bytes("80 01") +                  // MESSAGE_BLUETOOTH_PAIRING_REQUEST
                              bytes("0A 05") + text("AA:BB") +  // phone_address
                              bytes("10 02");                   // pairing_method 2

TEST_F(BluetoothEndpointTest, HandsThePairingRequestToTheHost) {
  EXPECT_CALL(host, pairingRequest("AA:BB", 2)).Times(2);
  sends(PAIRING_REQUEST);
  EXPECT_THAT(sent(), IsEmpty());  // the host answers when it likes
  EXPECT_EQ(routed(PAIRING_REQUEST), STATUS_SUCCESS);
}

TEST_F(BluetoothEndpointTest, HandsOverAMethodThatWasNeverRegistered) {
  bluetooth.registerPairingMethod(BLUETOOTH_PAIRING_METHOD_1);
  EXPECT_CALL(host, pairingRequest("AA:BB", 2));
  sends(PAIRING_REQUEST);
}

TEST_F(BluetoothEndpointTest, TellsThePhoneThatItIsReady) {
  bluetooth.onReadyForPairing(true);
  bluetooth.onReadyForPairing(false);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02"      // MESSAGE_BLUETOOTH_PAIRING_RESPONSE
                                        "08 00"      // status: success
                                        "10 01"),    // already_paired
                                  bytes("80 02"      // type
                                        "08 00"      // status
                                        "10 00")));  // already_paired: false, and said so
}

TEST_F(BluetoothEndpointTest, TellsThePhoneToWait) {
  bluetooth.requestDelayedPairing();
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02"  // MESSAGE_BLUETOOTH_PAIRING_RESPONSE
                                        "08 F6 FF FF FF FF FF FF FF FF 01"  // status -10: pairing delayed
                                        "10 00")));                         // already_paired: false
}

TEST_F(BluetoothEndpointTest, SendsAnyStatusOfTheEnumeration) {
  bluetooth.sendPairingResponse(STATUS_INVALID_STATE, true);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02"
                                        "08 F9 FF FF FF FF FF FF FF FF 01"  // status -7
                                        "10 01")));
}

TEST_F(BluetoothEndpointTest, SendsAuthenticationData) {
  bluetooth.sendAuthData("1234");
  bluetooth.sendAuthData("");
  EXPECT_THAT(sent(), ElementsAre(bytes("80 03"  // MESSAGE_BLUETOOTH_AUTHENTICATION_DATA
                                        "0A 04") +
                                      text("1234"),        // auth_data
                                  bytes("80 03 0A 00")));  // auth_data: empty, and said so
}

TEST_F(BluetoothEndpointTest, AnswersInAnyOrderAndNumber) {
  bluetooth.sendAuthData("");
  bluetooth.onReadyForPairing(true);
  bluetooth.onReadyForPairing(true);
  bluetooth.requestDelayedPairing();
  EXPECT_EQ(sent().size(), 4U);
}

TEST_F(BluetoothEndpointTest, SendsNothingOnAClosedChannel) {
  close();
  bluetooth.onReadyForPairing(true);
  bluetooth.requestDelayedPairing();
  bluetooth.sendPairingResponse(STATUS_SUCCESS, false);
  bluetooth.sendAuthData("1234");
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(BluetoothEndpointTest, AdvertisesAnEmptyAddressAndNoMethods) {
  EXPECT_EQ(advertised(), bytes("0A 06"     // services
                                "08 07"     // id
                                "32 02"     // bluetooth_service
                                "0A 00"));  // car_address: empty
}

TEST_F(BluetoothEndpointTest, AdvertisesEachMethodOnceInAscendingOrder) {
  bluetooth.registerCarBluetoothAddress("dropped");
  bluetooth.registerCarBluetoothAddress("11:22");
  bluetooth.registerPairingMethod(BLUETOOTH_PAIRING_METHOD_3);
  bluetooth.registerPairingMethod(BLUETOOTH_PAIRING_METHOD_1);
  bluetooth.registerPairingMethod(BLUETOOTH_PAIRING_METHOD_3);
  EXPECT_EQ(advertised(), bytes("0A 0F"  // services
                                "08 07"  // id
                                "32 0B"  // bluetooth_service
                                "0A 05") +
                              text("11:22") +         // car_address
                              bytes("12 02 01 03"));  // supported_pairing_methods, packed
}

TEST_F(BluetoothEndpointTest, CallsTheLatestCallbacks) {
  shared_ptr<IBluetoothCallbacks> latest;
  auto& latestHost = strict<MockBluetoothCallbacks>(&latest);
  bluetooth.registerCallbacks(latest);
  EXPECT_CALL(latestHost, pairingRequest("AA:BB", 2));
  sends(PAIRING_REQUEST);
}

TEST_F(BluetoothEndpointTest, DropsTheFormerCallbacks) {
  struct Watched : MockBluetoothCallbacks {
    explicit Watched(bool* flag) : gone(flag) {}
    ~Watched() override { *gone = true; }
    bool* gone;
  };
  bool gone = false;
  bluetooth.registerCallbacks(shared_ptr<IBluetoothCallbacks>(new Watched(&gone)));
  EXPECT_FALSE(gone) << "the endpoint alone holds them";
  bluetooth.registerCallbacks(held);
  EXPECT_TRUE(gone);
}

TEST_F(BluetoothEndpointTest, WithoutCallbacksARequestGoesNowhere) {
  bluetooth.registerCallbacks(shared_ptr<IBluetoothCallbacks>());
  sends(PAIRING_REQUEST);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(BluetoothEndpointTest, RefusesAPairingRequestThatDoesNotParse) {
  expectUnparsable(bytes("80 01"), "BluetoothEndpoint");
  expectUnparsable(bytes("80 01 0A 05 41"), "BluetoothEndpoint");        // cut off
  expectUnparsable(bytes("80 01 0A 01 41"), "BluetoothEndpoint");        // no pairing_method
  expectUnparsable(bytes("80 01 10 01"), "BluetoothEndpoint");           // no phone_address
  expectUnparsable(bytes("80 01 0A 01 41 10 05"), "BluetoothEndpoint");  // no such method
}

TEST_F(BluetoothEndpointTest, RefusesEveryOtherType) {
  expectUnknownTypes({0x8000, 0x8002, 0x8003, 0x8004, 0, 1, 255, 0xFFFF});
}

using BluetoothEndpointDeathTest = BluetoothEndpointTest;

TEST_F(BluetoothEndpointDeathTest, AStatusOutsideTheEnumerationEndsTheProcess) {
  EXPECT_DEATH(bluetooth.sendPairingResponse(-252, false), "::MessageStatus_IsValid\\(value\\)");
  close();
  EXPECT_DEATH(bluetooth.sendPairingResponse(1, false), "::MessageStatus_IsValid\\(value\\)");
}

TEST_F(BluetoothEndpointDeathTest, AMethodOutsideTheEnumerationEndsTheProcessAtDiscovery) {
  for (const int method : {0, 5, -1}) {
    BluetoothEndpoint another(SERVICE, link.router(), held);
    another.registerPairingMethod(static_cast<BluetoothPairingMethod>(method));
    ServiceDiscoveryResponse response;
    EXPECT_DEATH(another.addDiscoveryInfo(&response), "::BluetoothPairingMethod_IsValid\\(value\\)")
        << method;
  }
}

}  // namespace
}  // namespace test
