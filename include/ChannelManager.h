#pragma once

#include <atomic>

#include "Channel.h"
#include "ChannelSet.h"
#include "Frame.h"
#include "Mutex.h"
#include "Semaphore.h"
#include "VantryExport.h"
#include "shared_ptr.h"

class MessageRouter;
class SslWrapper;

/// Turns received bytes into frames and frames into messages, and messages to send into frames and bytes. It
/// knows channels by number and nothing of the services on them. VantryReceiver owns the one of a link.
///
///     offset  0        1      2       4                    4 or 8
///             channel  flags  length  total length         payload, `length` bytes
///             8 bits   8      16      32, FRAME_FIRST only
///
/// All numbers are big-endian. `length` counts the payload as it stands on the wire, so after encryption; the
/// total length is the plain size of the whole message.
///
/// Threads: queueIncoming and all that it calls run on one thread at a time, the reader; getEncodedFrame on
/// one, the writer; the queueOutgoing operations and prepareShutdown on any. A framing error is terminal:
/// nothing makes the manager run again after it.
class VANTRY_EXPORT ChannelManager {
 public:
  ChannelManager() = default;
  ChannelManager(const ChannelManager&) = delete;
  ChannelManager& operator=(const ChannelManager&) = delete;

  /// Before the threads start: forgets all channels and starts running. `messageRouter` is not owned and must
  /// live until `shutdown`. Always true.
  bool init(MessageRouter* messageRouter);

  /// Any thread: stops both directions and wakes a writer that is blocked in getEncodedFrame.
  void prepareShutdown();

  /// After both threads have ended: drops all channels, and the frames still queued on them.
  void shutdown();

  /// Reader thread (or before it starts). STATUS_INVALID_CHANNEL if `channel` is registered already.
  int registerChannel(unsigned char channel, signed char priority);

  /// Reader thread. Drops the channel and what it has queued. STATUS_INVALID_CHANNEL if it is not registered.
  int unregisterChannel(unsigned char channel);

  /// Any thread: queues one whole message, `length` bytes at `data` with its type in the first two. The bytes
  /// are copied before the call returns; it never waits for the link. `control` asks for FRAME_FLAG_CONTROL
  /// and `encrypted` for FRAME_FLAG_ENCRYPTED on every frame. Returns STATUS_INVALID_CHANNEL, and drops the
  /// message, if the channel is not registered. A message of several frames stays whole on the wire only if
  /// no other, long or short, is queued on its channel at the same time.
  int queueOutgoing(int channel, bool control, void* data, unsigned int length, bool encrypted);
  /// The same with `encrypted` true.
  int queueOutgoing(int channel, bool control, void* data, unsigned int length);
  /// The same with `encrypted` false.
  int queueOutgoingUnencrypted(int channel, bool control, void* data, unsigned int length);

  /// Any thread: how many bytes follow the first 4 of a frame, which `header` points at. Not below 0.
  static int getAdditionalBytesToRead(const unsigned char* header);

  /// Reader thread: takes exactly one whole frame. `buffer` is shared from now on, and decrypted in place:
  /// the caller must not reuse it. Returns STATUS_SUCCESS, STATUS_FRAMING_ERROR, or the status of a control
  /// message; what an endpoint thinks of its message is no failure of the link.
  int queueIncoming(const shared_ptr<IoBuffer>& buffer);

  /// Writer thread: blocks until a frame is ready and replaces `out`'s storage by its bytes. False when it
  /// woke without one (call again) or, at once and for ever, when the manager has stopped, be it by
  /// prepareShutdown or by a framing error.
  bool getEncodedFrame(IoBuffer* out);

  /// Reader thread, once, when the handshake has succeeded: frames flagged for encryption are encrypted and
  /// decrypted by `wrapper` from now on. Not owned.
  void setSslWrapper(SslWrapper* wrapper) { sslWrapper = wrapper; }

  /// Whether `init` has been called and neither prepareShutdown nor a framing error since. Any thread.
  bool isRunning() const { return running; }

  // The steps of the operations above, open to tests.

  /// Writer thread: picks the next channel's next frame, in a round robin over all 256 numbers, and encodes
  /// it.
  bool extractEncodedFrame(IoBuffer* out);
  /// Writer thread: one frame into wire bytes. Leaves `out` as it was if enciphering fails. Empties a frame
  /// that has `room`, for it is enciphered in its own storage, which then goes on to `out`.
  void encodeFrame(const shared_ptr<Frame>& frame, IoBuffer* out);
  /// Reader thread: wire bytes into `frame`, decrypting in place.
  int decodeFrame(const shared_ptr<Frame>& frame, const shared_ptr<IoBuffer>& buffer);
  /// Reader thread: hands a control frame to the router.
  int handleChannelControl(const shared_ptr<Frame>& frame, const shared_ptr<IoBuffer>& buffer);
  /// Reader thread: ends the link from the receive side and tells the host.
  void sendFramingError();
  /// Any thread: cuts a message into frames and queues them on `target`.
  void messageToFrames(int channel, bool control, void* data, unsigned int length,
                       const shared_ptr<Channel>& target, bool encrypted);
  /// Reader thread: joins the fragments held by `source`; an atomic frame's own buffer comes back uncopied.
  /// Bytes that were announced but not sent are zero. Raw messages are delivered so; a record of which more
  /// than 1 MiB was not sent is refused like one that does not parse. An empty pointer if there is no memory
  /// for the announced size.
  shared_ptr<IoBuffer> framesToMessage(const shared_ptr<Channel>& source);
  /// Reader thread: whether a frame fits its channel's state, and whether it completes a message.
  int checkFragment(const shared_ptr<Frame>& frame, shared_ptr<Channel>* channel, bool* acceptable,
                    bool* complete);

 private:
  shared_ptr<Channel> channelAt(int channel);
  shared_ptr<Channel> nextChannelToServe();
  void encipherFrame(Frame* frame, SslWrapper* wrapper, IoBuffer* out);
  bool decryptInPlace(Frame* frame, SslWrapper* wrapper);
  int deliver(shared_ptr<Frame> frame);
  static shared_ptr<IoBuffer> messageIn(Frame* frame);

  shared_ptr<Channel> channels[256];
  std::atomic<MessageRouter*> router{nullptr};
  std::atomic<bool> running{false};
  Mutex channelsLock;  // guards channels, lastChannel; taken before a Channel's own locks
  Semaphore outgoingFrames;
  std::atomic<SslWrapper*> sslWrapper{nullptr};
  int lastChannel = 255;
  shared_ptr<Frame> spareFrame;  // the reader's, from the last message that was one frame
  ChannelSet waiting;            // where to look for frames, so that idle channels cost nothing
};
