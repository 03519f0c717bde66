#pragma once

#include <string>

#include "EndpointTest.h"

namespace test {

/// The bytes of a text, for golden vectors: bytes("0A 03") + text("abc").
inline Bytes text(const std::string& characters) { return Bytes(characters.data(), characters.size()); }

/// The fixture for a service of which the test is about one channel, CHANNEL. The derived fixture calls
/// `open` with its endpoint, whose service id is SERVICE.
class ServiceTest : public EndpointTest {
 protected:
  static constexpr int SERVICE = 7;
  static constexpr int CHANNEL = 3;

  /// Makes a mock of an interface on which an unexpected call fails the test, owned by `*held`.
  template <class Mock, class Interface>
  static Mock& strict(shared_ptr<Interface>* held) {
    auto* const made = new testing::StrictMock<Mock>();
    *held = shared_ptr<Interface>(made);
    return *made;
  }

  void open(ProtocolEndpointBase* endpointToOpen) {
    endpoint = endpointToOpen;
    link.registers(endpoint);
    link.opens(CHANNEL, SERVICE);
  }

  void close() { link.closes(CHANNEL); }

  /// What the endpoint itself makes of a message, past the router.
  int routed(const Bytes& wholeMessage) {
    const shared_ptr<IoBuffer> buffer(new IoBuffer(static_cast<unsigned int>(wholeMessage.size())));
    std::copy(wholeMessage.begin(), wholeMessage.end(), buffer->content());
    const int type = wholeMessage[0] * 256 + wholeMessage[1];
    return endpoint->routeMessage(CHANNEL, static_cast<unsigned short>(type), buffer);
  }

  /// The phone sends a whole message.
  void sends(const Bytes& wholeMessage) { link.sends(CHANNEL, wholeMessage); }

  /// What the head unit has sent since the last look.
  std::vector<Bytes> sent() { return link.sent(CHANNEL); }

  /// What the endpoint adds to the discovery response.
  Bytes advertised() {
    ServiceDiscoveryResponse response;
    endpoint->addDiscoveryInfo(&response);
    return text(response.SerializePartialAsString());
  }

  /// The phone is told that its message was not understood, and the log says so; `debugLines` matches what
  /// else it says.
  template <class DebugLines>
  void expectRefused(const Bytes& wholeMessage, DebugLines debugLines) {
    log.clear();
    sends(wholeMessage);
    EXPECT_THAT(sent(), ElementsAre(unexpectedMessage()));
    EXPECT_THAT(log.debug(), debugLines);
    EXPECT_THAT(log.critical(), ElementsAre("[LHU] Sending unexpected message on channel 3"));
    EXPECT_EQ(routed(wholeMessage), STATUS_UNEXPECTED_MESSAGE);
  }

  /// The service refuses a message of a type that it takes, since its body is no record.
  void expectUnparsable(const Bytes& wholeMessage, const std::string& sourceFile) {
    expectRefused(wholeMessage, ElementsAre(parseFailureIn(sourceFile)));
  }

  /// The service refuses every one of these types, silently, whatever the body.
  void expectUnknownTypes(std::initializer_list<int> types) {
    for (const int type : types) {
      SCOPED_TRACE(type);
      expectRefused(message(type), IsEmpty());
      expectRefused(message(type, bytes("FF FF FF")), IsEmpty());
    }
  }

  ProtocolEndpointBase* endpoint = nullptr;
};

}  // namespace test
