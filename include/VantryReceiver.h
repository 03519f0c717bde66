#pragma once

#include "ChannelManager.h"
#include "Controller.h"
#include "IControllerCallbacks.h"
#include "IoBuffer.h"
#include "MessageRouter.h"
#include "VantryExport.h"
#include "shared_ptr.h"

/// One link to one phone: the only door through which bytes pass. Received frames go in through
/// `queueIncoming`, frames to send come out through `getEncodedFrame`; a Transport does both on two threads.
///
/// The order of calls: construct; `init`; construct the endpoints and `registerService` each;
/// `controller().setClientCreds` and the identity setters; start the Transport (or an own pumping of bytes);
/// `start`. To stop: `prepareShutdown` (Transport::requestStop does it), wait for the pumping threads,
/// `shutdown`, destroy. A finished receiver is not started again; a process may have any number of receivers,
/// one after another or at once.
///
/// The endpoints, their callbacks and the Transport belong to the host and outlive the link.
class VANTRY_EXPORT VantryReceiver {
 public:
  VantryReceiver() : controller_(&router) {}

  VantryReceiver(const VantryReceiver&) = delete;
  VantryReceiver& operator=(const VantryReceiver&) = delete;

  /// First of all: opens channel 0 for the controller, and forgets endpoints registered before. Keeps a
  /// reference to `callbacks`, which must point to an object, until destruction. In effect always true (1).
  int init(const shared_ptr<IControllerCallbacks>& callbacks);

  /// After `init`, and before the transport's threads start, since the table of services has no lock: offers
  /// a service to the phone. `endpoint` is not owned and must outlive the link. Returns false, and changes
  /// nothing, if the low 8 bits of its service id are 255 or already taken.
  bool registerService(ProtocolEndpointBase* endpoint);

  /// Begins the link by queueing the version request. STATUS_SUCCESS; without `init` nothing is sent.
  int start();

  /// Any thread: stops both directions and wakes a thread blocked in `getEncodedFrame`. May be repeated.
  void prepareShutdown();

  /// Once, after the pumping threads have ended: drops the channels and frees the TLS session, also what a
  /// failed Controller::setClientCreds has left. It also runs OpenSSL's process-wide clean-up, which unloads
  /// OpenSSL's configuration modules. Nothing but destruction is allowed afterwards.
  void shutdown();

  /// Reader thread: takes one whole frame, header included, out of memory that stays the caller's: `length`
  /// bytes at `data` are copied. More or fewer bytes than the frame has are a framing error. Returns
  /// STATUS_SUCCESS, STATUS_FRAMING_ERROR or the status of a channel control message. Endpoints and callbacks
  /// run inside this call. A control frame of unknown type on a channel that the phone has not opened ends
  /// the process by an assertion.
  int queueIncoming(void* data, unsigned int length);

  /// Reader thread: the same without a copy. The buffer is shared from now on and decrypted in place; the
  /// caller must not reuse it.
  int queueIncoming(const shared_ptr<IoBuffer>& frame);

  /// Any thread: a buffer of `size` bytes, all content, for the caller to read a frame into.
  shared_ptr<IoBuffer> allocateBuffer(unsigned int size);

  /// Any thread: how many bytes follow the first 4 of a frame, which `header` points at.
  int getAdditionalBytesToRead(unsigned char* header);

  /// Writer thread: blocks until a frame is ready and replaces `out`'s storage by its bytes, which go to the
  /// phone as they are. Returns false when it woke without a frame (call again unless stopping) and, at once
  /// and for ever, after `prepareShutdown` or a framing error: a loop that only calls again then spins until
  /// the host stops the link, as unrecoverableError asks it to.
  bool getEncodedFrame(IoBuffer* out);

  /// The control service: credentials, identity, ping, focus, bye-bye. Valid as long as the receiver.
  Controller& controller() { return controller_; }

  /// What endpoints are constructed with. Valid as long as the receiver.
  MessageRouter* messageRouter() { return &router; }

 private:
  MessageRouter router;
  ChannelManager channelManager;
  Controller controller_;
};
