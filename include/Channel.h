#pragma once

#include <deque>

#include "ChannelSet.h"
#include "Frame.h"
#include "Mutex.h"
#include "VantryExport.h"
#include "shared_ptr.h"

/// One logical channel: the frames waiting to be sent on it, and the fragments of the one message now
/// arriving on it. Created by ChannelManager, always held by shared_ptr, gone with its last reference, frames
/// and all. Both queues are unbounded. Each operation takes the lock of its own queue and no other.
class VANTRY_EXPORT Channel {
 public:
  /// `storedPriority` is kept for inspection; scheduling takes no account of it. `waitingChannels` is not
  /// owned and outlives the channel, which enters its number there with each frame; hasOutgoing() takes it
  /// out again.
  Channel(unsigned char channelId, unsigned char storedPriority, ChannelSet* waitingChannels)
      : id(channelId), priority(storedPriority), waiting(waitingChannels) {}

  /// Reader thread: whether a message is half received.
  bool hasIncoming();
  /// Reader thread: appends a fragment.
  void enqueueIncoming(const shared_ptr<Frame>& frame);
  /// Reader thread: removes and returns the oldest fragment; only while hasIncoming().
  shared_ptr<Frame> dequeueIncoming();
  /// Reader thread: the newest fragment, which stays; only while hasIncoming().
  shared_ptr<Frame> peekLastIncoming();
  /// Reader thread: payload bytes of all fragments now held.
  unsigned long long incomingLength();
  /// Reader thread: the announced size of the message now arriving; only while hasIncoming().
  unsigned int incomingTotal();

  /// Any thread, while the channel is registered: whether a frame waits to be sent.
  bool hasOutgoing();
  /// Any thread: appends a frame, which is not changed from now on; the second takes the reference over.
  void enqueueOutgoing(const shared_ptr<Frame>& frame);
  void enqueueOutgoing(shared_ptr<Frame>&& frame);
  /// Writer thread: removes and returns the oldest frame; an empty pointer if there is none.
  shared_ptr<Frame> dequeueOutgoing();

  const unsigned char id;
  const unsigned char priority;

 private:
  std::deque<shared_ptr<Frame>> outgoing;
  std::deque<shared_ptr<Frame>> incoming;
  Mutex incomingLock;  // guards incoming, incomingBytes
  Mutex outgoingLock;  // guards outgoing, and this channel's place in `waiting`
  unsigned long long incomingBytes = 0;
  ChannelSet* const waiting;
};
