#pragma once

#include "MockCallbacks.h"
#include "VantryReceiver.h"
#include "Wire.h"

namespace test {

/// A head unit without a medium, a thread or TLS, on which a test plays the phone on one thread. Frames carry
/// the encryption flag where a phone would set it, and are plain all the same. See EndpointTest for how it
/// reads.
class PlainLink {
 public:
  PlainLink();
  ~PlainLink();
  PlainLink(const PlainLink&) = delete;
  PlainLink& operator=(const PlainLink&) = delete;

  // What the head unit is made of.
  VantryReceiver& receiver() { return receiver_; }
  MessageRouter* router() { return receiver_.messageRouter(); }
  ChannelManager& channels() { return *manager_; }
  Controller& controller() { return receiver_.controller(); }
  /// The host's control callbacks; unexpected calls are ignored.
  MockControllerCallbacks& host() { return *host_; }

  /// Offers a service; an expectation fails if the receiver refuses it.
  void registers(ProtocolEndpointBase* endpoint);

  // What the phone does. Each returns what VantryReceiver::queueIncoming did, the last frame's if it took
  // several.

  /// Opens `channel` to a service. The head unit's answer, if any, is consumed, and its status returned;
  /// without an answer -1.
  int opens(int channel, int serviceId, int priority = 0);
  int closes(int channel);
  /// Sends a whole message, in fragments if it is long.
  int sends(int channel, const Bytes& wholeMessage);
  int sends(int channel, int type, const Bytes& body);
  int sends(int channel, int type, const google::protobuf::MessageLite& record);
  /// Hands over the bytes of one frame as they are.
  int feeds(const Bytes& wireFrame);
  int feeds(const std::vector<Bytes>& wireFrames);

  // What the head unit sent.

  /// Messages on `channel` since the last look at it, oldest first: two type bytes and a body. Those in
  /// control frames included.
  std::vector<Bytes> sent(int channel);
  /// Frames of all channels as they left, since the last look at them. A frame is seen by one of the two
  /// only.
  std::vector<Bytes> sentFrames();

 private:
  void collect();

  VantryReceiver receiver_;
  ChannelManager* manager_;
  MockControllerCallbacks* host_;  // owned by the receiver
  std::vector<Bytes> collected_;
};

}  // namespace test
