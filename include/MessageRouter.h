#pragma once

#include <atomic>

#include "Frame.h"
#include "IoBuffer.h"
#include "VantryExport.h"
#include "protos.pb.h"
#include "shared_ptr.h"

class ChannelManager;
class ProtocolEndpointBase;

/// Knows which service holds which channel, carries out the opening and closing of channels, and gives each
/// whole message to its endpoint. VantryReceiver owns the one of a link; hosts reach it through
/// VantryReceiver::messageRouter() to construct their endpoints.
///
/// Threads: the send operations and closeChannel on any thread; init and registerService before the link
/// starts; everything else on the reader thread.
class VANTRY_EXPORT MessageRouter {
 public:
  MessageRouter();
  MessageRouter(const MessageRouter&) = delete;
  MessageRouter& operator=(const MessageRouter&) = delete;

  /// Forgets all services and mappings. `manager` is not owned and must live until `shutdown`. Always true.
  bool init(ChannelManager* manager);

  /// After the link's threads have ended. Messages sent from now on are dropped.
  void shutdown();

  /// Gives `channel` to `service`.
  void setupMapping(unsigned char service, unsigned char channel);

  /// Before the link starts. `endpoint` is not owned and must outlive the link. Returns false, and changes
  /// nothing, if the low 8 bits of its service id are 255 or already taken.
  bool registerService(ProtocolEndpointBase* endpoint);

  /// Delivers a whole message of an ordinary frame. Returns the endpoint's status, STATUS_INVALID_CHANNEL for
  /// an unmapped channel, or, after answering the phone with MESSAGE_UNEXPECTED_MESSAGE, the status of that
  /// answer.
  int routeMessage(unsigned char channel, const shared_ptr<IoBuffer>& message);

  /// Delivers a control frame, whose `length` message bytes are at `message`. Returns what came of the
  /// request, and STATUS_INVALID_CHANNEL for one that does not parse. A type other than open and close is
  /// answered with MESSAGE_UNEXPECTED_MESSAGE; on a channel that is not registered, where no answer can
  /// leave, it ends the process.
  int routeChannelControlMsg(const shared_ptr<Frame>& frame, void* message, unsigned int length);

  /// Judges an open request and, on STATUS_SUCCESS, maps the channel. STATUS_INVALID_CHANNEL if the channel
  /// is mapped already, STATUS_NO_SUCH_SERVICE if there is no service of that id, STATUS_CHANNEL_REFUSED if
  /// the endpoint refuses; nothing changes then.
  int handleChannelOpenReq(unsigned char channel, const ChannelOpenRequest& request);

  /// Tells the endpoint of its channel.
  void notifyChannelOpened(unsigned char channel, const ChannelOpenRequest& request);

  /// Judges a close notification and, on STATUS_SUCCESS, unmaps the channel. STATUS_INVALID_CHANNEL if the
  /// channel is not mapped, STATUS_NO_SUCH_SERVICE if its service is gone, STATUS_INVALID_STATE if the
  /// endpoint refuses; the mapping stays then.
  int handleChannelCloseNotif(unsigned char channel, const ChannelCloseNotification& notification);

  /// Queues the verdict on `channel`; dropped, with STATUS_INVALID_CHANNEL, where the channel is not
  /// registered. `status` must be a MessageStatus; anything else ends the process.
  int sendChannelOpenResp(unsigned char channel, int status);

  /// Tells the phone that its message on `channel` was not understood. Returns the status of the queueing, as
  /// queueOutgoing.
  int sendUnexpectedMessage(unsigned char channel);

  /// Any thread: the head unit's own way of closing. Notifies the phone and unmaps the channel, so that what
  /// still arrives on it is dropped; the endpoint is not told and still counts its channel as open. Returns
  /// false if the channel is not mapped. Where the phone closes the channel and opens it anew meanwhile, the
  /// new mapping stays if it is to another service; one to the same service looks like the old and goes, so
  /// that the phone's messages on it are dropped.
  bool closeChannel(unsigned char channel);

  /// The 16-bit type in the first two of the bytes at `data`.
  static unsigned short extractType(unsigned char* data);

  /// Replaces `out`'s content by a whole message: the two type bytes and the serialized record. Required
  /// fields are the sender's duty and are not checked. A record of 2 GiB or more leaves `out` empty, which
  /// sends nothing.
  static void marshallProto(unsigned short type, const google::protobuf::MessageLite& message, IoBuffer* out);

  /// Any thread: queues a whole message, encrypted once the handshake has succeeded. `data` is copied before
  /// the call returns; a `length` of 0 sends nothing. STATUS_INVALID_CHANNEL if the channel is not
  /// registered, and after `shutdown`. A message of more than MAX_FRAGMENT_PAYLOAD (16128) bytes stays whole
  /// on the wire only if no other, long or short, is queued on its channel at the same time.
  int queueOutgoing(unsigned char channel, void* data, unsigned int length);

  /// The same, never encrypted.
  int queueOutgoingUnencrypted(unsigned char channel, void* data, unsigned int length);

  /// Lets every registered endpoint add its record, in ascending order of service id.
  void populateServiceDiscoveryResponse(ServiceDiscoveryResponse* response);

  /// Tells the host that the link is beyond repair. Reader or writer thread.
  void unrecoverableError();

  /// The link's frame layer; null before `init` and after `shutdown`.
  ChannelManager* manager() const { return channelManager; }

 private:
  ProtocolEndpointBase* endpointOf(unsigned char service) const;
  int openChannel(unsigned char channel, void* body, unsigned int length);
  int channelClosedByPhone(unsigned char channel, void* body, unsigned int length);
  int sendControl(unsigned char channel, unsigned short type, const google::protobuf::MessageLite& record);

  static constexpr unsigned char UNMAPPED = 255;

  std::atomic<unsigned char> channelToService[256];
  ProtocolEndpointBase* services[255] = {};  // not owned
  std::atomic<ChannelManager*> channelManager{nullptr};
};
