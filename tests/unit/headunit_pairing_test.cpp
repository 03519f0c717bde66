#include "headunit/services/PairingService.h"

#include "headunit_services.h"

namespace headunit {
namespace {

const std::string PHONE_ADDRESS = "02:00:00:5E:77:01";

const Bytes READY = bytes(
    "80 02"    // MESSAGE_BLUETOOTH_PAIRING_RESPONSE
    "08 00"    // status: success
    "10 00");  // already_paired: no
const Bytes KNOWN = bytes("80 02 08 00 10 01");
const Bytes DELAYED = bytes("80 02 08 F6 FF FF FF FF FF FF FF FF 01 10 00");
const Bytes REFUSED = bytes("80 02 08 FD FF FF FF FF FF FF FF FF 01 10 00");  // -3
const Bytes AUTHENTICATION = bytes(
                                 "80 03"     // MESSAGE_BLUETOOTH_AUTHENTICATION_DATA
                                 "0A 06") +  // auth_data
                             test::text("123456");

struct HeadunitPairing : ServicesTest {
  PairedPhones paired;
  int passkeys = 0;
  PairingEndpoint pairing{SERVICE, context, manner(false)};

  PairingManner manner(bool answersItself) {
    return {answersItself, &paired, [this] { return std::to_string(123456 + passkeys++); }};
  }
  static BluetoothPairingRequest request(BluetoothPairingMethod method = BLUETOOTH_PAIRING_METHOD_2,
                                         const std::string& address = PHONE_ADDRESS) {
    BluetoothPairingRequest request;
    request.set_phone_address(address);
    request.set_pairing_method(method);
    return request;
  }
  void asks(BluetoothPairingMethod method = BLUETOOTH_PAIRING_METHOD_2,
            const std::string& address = PHONE_ADDRESS) {
    sends(MESSAGE_BLUETOOTH_PAIRING_REQUEST, request(method, address));
  }
};

TEST_F(HeadunitPairing, OffersTheTwoMethodsThatItKnows) {
  ServiceDiscoveryResponse response;
  pairing.addDiscoveryInfo(&response);
  const BluetoothService& offered = response.services(0).bluetooth_service();
  EXPECT_THAT(offered.supported_pairing_methods(),
              ElementsAre(BLUETOOTH_PAIRING_METHOD_2, BLUETOOTH_PAIRING_METHOD_3));
  EXPECT_EQ(offered.car_address().size(), 17U);
}

TEST_F(HeadunitPairing, AsksTheUserAndHasThePhoneWait) {
  open(&pairing);
  asks();
  ASSERT_TRUE(view().pairing);
  EXPECT_EQ(view().pairing->phoneAddress, PHONE_ADDRESS);
  EXPECT_EQ(view().pairing->method, "Compare the passkey");
  EXPECT_EQ(view().pairing->passkey, "123456");
  EXPECT_THAT(sent(), ElementsAre(DELAYED));
}

TEST_F(HeadunitPairing, KeepsThePasskeyWhileThePhoneAsksAgain) {
  open(&pairing);
  asks();
  asks();
  EXPECT_EQ(view().pairing->passkey, "123456");
  EXPECT_THAT(sent(), ElementsAre(DELAYED, DELAYED));
  EXPECT_EQ(tally.totals().pairingsDelayed, 2U);
}

TEST_F(HeadunitPairing, HasAnotherPhoneWaitForTheAnswer) {
  open(&pairing);
  asks();
  asks(BLUETOOTH_PAIRING_METHOD_3, "02:00:00:5E:77:02");
  EXPECT_EQ(view().pairing->phoneAddress, PHONE_ADDRESS) << "the question under the user's finger stays";
  EXPECT_EQ(view().pairing->passkey, "123456");
  EXPECT_THAT(sent(), ElementsAre(DELAYED, DELAYED));
  pairing.host().answer(true);
  EXPECT_FALSE(paired.knows("02:00:00:5E:77:02"));
  asks(BLUETOOTH_PAIRING_METHOD_3, "02:00:00:5E:77:02");
  EXPECT_EQ(view().pairing->phoneAddress, "02:00:00:5E:77:02");
  EXPECT_EQ(view().pairing->method, "Type the passkey on the phone");
  EXPECT_EQ(view().pairing->passkey, "123457");
}

TEST_F(HeadunitPairing, TellsThePhoneThatTheUserAccepts) {
  open(&pairing);
  asks();
  sent();
  EXPECT_TRUE(pairing.host().answer(true));
  EXPECT_THAT(sent(), ElementsAre(READY, AUTHENTICATION));
  EXPECT_FALSE(view().pairing);
  EXPECT_TRUE(paired.knows(PHONE_ADDRESS));
  EXPECT_FALSE(pairing.host().answer(true)) << "nothing is asked any more";
}

TEST_F(HeadunitPairing, TellsThePhoneThatTheUserRefuses) {
  open(&pairing);
  asks();
  sent();
  EXPECT_TRUE(pairing.host().answer(false));
  EXPECT_THAT(sent(), ElementsAre(REFUSED));
  EXPECT_FALSE(paired.knows(PHONE_ADDRESS));
  EXPECT_EQ(tally.totals().pairingsRefused, 1U);
}

TEST_F(HeadunitPairing, AsksTheUserNoMoreAboutAPhoneThatWasRefused) {
  open(&pairing);
  asks();
  pairing.host().answer(false);
  sent();
  asks();
  EXPECT_FALSE(view().pairing);
  EXPECT_THAT(sent(), ElementsAre(REFUSED));
  EXPECT_EQ(tally.totals().pairingsRefused, 2U);
  asks(BLUETOOTH_PAIRING_METHOD_2, "02:00:00:5E:77:02");
  ASSERT_TRUE(view().pairing);
  EXPECT_EQ(view().pairing->phoneAddress, "02:00:00:5E:77:02");
}

TEST_F(HeadunitPairing, RefusesForOneLinkOnly) {
  open(&pairing);
  asks();
  pairing.host().answer(false);
  ASSERT_FALSE(view().pairing);
  test::PlainLink another;
  ServiceContext there = context;
  there.router = another.router();
  PairingEndpoint next(SERVICE, there, manner(false));
  another.registers(&next);
  another.opens(CHANNEL, SERVICE);
  another.sends(CHANNEL, MESSAGE_BLUETOOTH_PAIRING_REQUEST, request());
  EXPECT_TRUE(view().pairing);
}

TEST_F(HeadunitPairing, KnowsAPhoneThatWasPairedBefore) {
  paired.add(PHONE_ADDRESS);
  open(&pairing);
  asks();
  EXPECT_THAT(sent(), ElementsAre(KNOWN));
  EXPECT_FALSE(view().pairing);
}

TEST_F(HeadunitPairing, RefusesAMethodThatItDoesNotOffer) {
  open(&pairing);
  asks(BLUETOOTH_PAIRING_METHOD_4);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02 08 F8 FF FF FF FF FF FF FF FF 01 10 00")));  // -8
  EXPECT_FALSE(view().pairing);
}

TEST_F(HeadunitPairing, RefusesAnAddressThatCannotBeOne) {
  PairingEndpoint willing(SERVICE, context, manner(true));
  open(&willing);
  asks(BLUETOOTH_PAIRING_METHOD_2, std::string(65, '0'));
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02 08 F8 FF FF FF FF FF FF FF FF 01 10 00")));  // -8
  asks(BLUETOOTH_PAIRING_METHOD_2, std::string(64, '0'));
  EXPECT_THAT(sent(), ElementsAre(READY, AUTHENTICATION));
}

TEST_F(HeadunitPairing, AnswersByItselfIfItIsToldTo) {
  PairingEndpoint willing(SERVICE, context, manner(true));
  open(&willing);
  asks();
  EXPECT_THAT(sent(), ElementsAre(READY, AUTHENTICATION));
  EXPECT_FALSE(view().pairing);
  EXPECT_EQ(tally.totals().pairingsAccepted, 1U);
  EXPECT_EQ(tally.totals().pairingsDelayed, 0U);
}

TEST_F(HeadunitPairing, AsksNoMoreWhenTheChannelCloses) {
  open(&pairing);
  asks();
  link.closes(CHANNEL);
  EXPECT_FALSE(view().pairing);
  EXPECT_FALSE(pairing.host().answer(true));
}

TEST_F(HeadunitPairing, MakesPasskeysOfSixDigits) {
  PairingEndpoint ordinary(SERVICE, context, PairingManner{false, &paired, {}});
  open(&ordinary);
  asks();
  EXPECT_THAT(view().pairing->passkey, testing::MatchesRegex("[0-9]{6}"));
}

}  // namespace
}  // namespace headunit
