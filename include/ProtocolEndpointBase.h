#pragma once

#include <atomic>

#include "IoBuffer.h"
#include "VantryExport.h"
#include "protos.pb.h"
#include "shared_ptr.h"

class MessageRouter;

/// The base class of every service. A service has a fixed service id; the phone picks a channel number when
/// it opens the service, and from then on messages of that channel reach `routeMessage`.
///
/// The host creates an endpoint, registers it before the link starts, and keeps it for at least as long as
/// the link. All virtual operations run on the reader thread, inside VantryReceiver::queueIncoming, and must
/// return soon: the next frame waits for them. Sends may come from any thread.
///
/// Long messages: one of more than MAX_FRAGMENT_PAYLOAD (16128) bytes leaves in several frames, and no other
/// message of its channel, however short, may get between them: to the phone that is a broken stream. A lock
/// of the host's around all sends of a service is not enough: the reader thread sends as well, what the
/// service answers by itself, and MESSAGE_UNEXPECTED_MESSAGE to whatever the phone sends that is not
/// understood. Two ways are sure: no message of the service is longer than that, or all that the host sends
/// by it is sent from callbacks, which run on the reader thread. Messages of other channels do no harm.
///
/// Callback objects are dropped by the service's destructor, on the thread that destroys it: if the host
/// keeps no reference of its own, they are destroyed there.
class VANTRY_EXPORT ProtocolEndpointBase {
 public:
  /// `id`: 0 to 254, of which 0 is the Controller's; only the low 8 bits count. `messageRouter`: that of the
  /// link, VantryReceiver::messageRouter(); not owned. `raw`: send every message to handleRawMessage,
  /// undecoded.
  ProtocolEndpointBase(int id, MessageRouter* messageRouter, bool raw);
  virtual ~ProtocolEndpointBase();

  ProtocolEndpointBase(const ProtocolEndpointBase&) = delete;
  ProtocolEndpointBase& operator=(const ProtocolEndpointBase&) = delete;

  /// The phone closes `channel`. Returns false, which refuses, if no channel is open.
  virtual bool onChannelClosed(unsigned char channel);

  /// Whether the phone may open `channel` to this service: true while no channel is open. Changes nothing.
  virtual bool mayOpenChannel(unsigned char channel);

  /// The channel is open, and the phone's answer is already queued.
  virtual void onChannelOpened(unsigned char channel);

  /// Handles a message of the 16-bit `type`. `message` has the two type bytes as its first content; it is
  /// shared and may be kept. STATUS_UNEXPECTED_MESSAGE makes the router answer the phone; any other result
  /// goes no further. Here: STATUS_NO_SUCH_SERVICE.
  virtual int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message);

  /// The same for a service with `rawMessages`, whose messages need not have a type.
  virtual int handleRawMessage(unsigned char channel, const shared_ptr<IoBuffer>& message);

  /// Adds the service's `Service` record to `response`, which is valid during the call.
  virtual void addDiscoveryInfo(ServiceDiscoveryResponse* response) = 0;

  /// Any thread: whether the phone has a channel open to this service.
  bool isChannelOpen() const { return channelOpened; }

  /// The service id as given at construction.
  int id() const { return serviceId; }

 protected:
  /// Any thread: queues `record` as a message of `type`, encrypted. Returns the status of the queueing;
  /// STATUS_SUCCESS as well if no channel is open, which drops the message, and for a record of 2 GiB or
  /// more, which no message can hold. A record must not change during the call.
  int sendRecord(unsigned short type, const google::protobuf::MessageLite& record);

  /// Any thread: the same for a whole message, type included. `data` is copied before the call returns. A
  /// `length` of 0 sends nothing.
  int sendMessage(void* data, unsigned int length);

  std::atomic<bool> channelOpened{false};
  std::atomic<unsigned char> channelId{0};  ///< valid while channelOpened
  MessageRouter* const router;
  const int serviceId;
  const bool rawMessages;

 private:
  friend class MessageRouter;
};
