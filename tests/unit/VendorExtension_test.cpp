#include "VendorExtension.h"

#include "ServiceTest.h"
#include "VantryVerificationVendorExtension.h"

namespace test {
namespace {

struct RecordingCallbacks : IVendorExtensionCallbacks {
  int dataAvailable(unsigned char* data, unsigned int length) override {
    received.emplace_back(data, length);
    return answer;
  }
  std::vector<Bytes> received;
  int answer = STATUS_SUCCESS;
};

struct PlainExtension : VendorExtension {
  using VendorExtension::VendorExtension;
  void addDiscoveryInfo(ServiceDiscoveryResponse*) override {}
};

struct VendorExtensionTest : ServiceTest {
  RecordingCallbacks* const host = new RecordingCallbacks();  // owned by the pointer below
  shared_ptr<IVendorExtensionCallbacks> held{host};
  PlainExtension extension{SERVICE, link.router(), held};
  VendorExtensionTest() { open(&extension); }
};

TEST_F(VendorExtensionTest, HandsOverEveryByteOfAMessage) {
  sends(bytes("80 02 0A 00"));
  sends(bytes("41"));  // too short for a type, which nobody asked for
  EXPECT_THAT(host->received, ElementsAre(bytes("80 02 0A 00"), bytes("41")));
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(VendorExtensionTest, HandsOverALongMessageInOnePiece) {
  const Bytes message = pattern(100000);
  sends(message);
  EXPECT_THAT(host->received, ElementsAre(message));
}

TEST_F(VendorExtensionTest, ReturnsWhatTheCallbackReturns) {
  const shared_ptr<IoBuffer> buffer(new IoBuffer(3));
  for (const int answer : {0, 5, -7}) {
    host->answer = answer;
    EXPECT_EQ(extension.handleRawMessage(CHANNEL, buffer), answer);
  }
}

TEST_F(VendorExtensionTest, OnlyAnUnexpectedMessageIsAnswered) {
  for (const int answer : {5, -5, -7}) {
    host->answer = answer;
    sends(bytes("80 01"));
    EXPECT_THAT(sent(), IsEmpty());
  }
  host->answer = STATUS_UNEXPECTED_MESSAGE;
  sends(bytes("80 01"));
  EXPECT_THAT(sent(), ElementsAre(unexpectedMessage()));
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Sending unexpected message on channel 3"));
}

TEST_F(VendorExtensionTest, RoutesNothingByType) {
  EXPECT_EQ(routed(bytes("80 01")), STATUS_NO_SUCH_SERVICE);
  EXPECT_THAT(host->received, IsEmpty());
}

TEST_F(VendorExtensionTest, SendsExactlyTheBytesGiven) {
  Bytes data = bytes("41 42 43");
  extension.sendData(data.data(), 3);
  extension.sendData(data.data(), 1);
  EXPECT_THAT(sent(), ElementsAre(bytes("41 42 43"), bytes("41")));
}

TEST_F(VendorExtensionTest, SendsNothingOnAClosedChannel) {
  close();
  Bytes data = bytes("41 42 43");
  extension.sendData(data.data(), 3);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(VendorExtensionTest, TheVerificationExtensionNamesItselfAndItsTwoApplications) {
  VantryVerificationVendorExtension verification(SERVICE, link.router(), held);
  endpoint = &verification;
  const std::string name = "com.corvane.drovia.projection.protocol.VantryVerificationVendorExtension";
  const std::string first = "com.corvane.drovia.projection.spindrel.receivertest";
  const std::string second = "com.corvane.drovia.projection.localsink";
  EXPECT_EQ(advertised(), bytes("0A AD 01"  // services
                                "08 07"     // id
                                "62 A8 01"  // vendor_extension_service
                                "0A 48") +
                              text(name) +                     // service_name
                              bytes("12 33") + text(first) +   // package_white_list
                              bytes("12 27") + text(second));  // package_white_list; and no data
}

TEST_F(VendorExtensionTest, TheVerificationExtensionIsAPipeLikeAnyOther) {
  VantryVerificationVendorExtension verification(SERVICE + 1, link.router(), held);
  link.registers(&verification);
  link.opens(CHANNEL + 1, SERVICE + 1);
  link.sends(CHANNEL + 1, bytes("80 02 0A 00"));
  EXPECT_THAT(host->received, ElementsAre(bytes("80 02 0A 00")));
  Bytes data = bytes("80 09 0A 00");
  verification.sendData(data.data(), 4);
  EXPECT_THAT(link.sent(CHANNEL + 1), ElementsAre(data));
}

}  // namespace
}  // namespace test
