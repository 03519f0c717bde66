#include "Channel.h"

#include <utility>

bool Channel::hasIncoming() {
  Autolock lock(&incomingLock);
  return !incoming.empty();
}

void Channel::enqueueIncoming(const shared_ptr<Frame>& frame) {
  Autolock lock(&incomingLock);
  incoming.push_back(frame);
  incomingBytes += frame->length;
}

shared_ptr<Frame> Channel::dequeueIncoming() {
  Autolock lock(&incomingLock);
  shared_ptr<Frame> frame = std::move(incoming.front());
  incoming.pop_front();
  incomingBytes -= frame->length;
  return frame;
}

shared_ptr<Frame> Channel::peekLastIncoming() {
  Autolock lock(&incomingLock);
  return incoming.back();
}

unsigned long long Channel::incomingLength() {
  Autolock lock(&incomingLock);
  return incomingBytes;
}

unsigned int Channel::incomingTotal() {
  Autolock lock(&incomingLock);
  return incoming.front()->totalLength;
}

bool Channel::hasOutgoing() {
  Autolock lock(&outgoingLock);
  if (outgoing.empty()) waiting->erase(id);
  return !outgoing.empty();
}

void Channel::enqueueOutgoing(const shared_ptr<Frame>& frame) { enqueueOutgoing(shared_ptr<Frame>(frame)); }

void Channel::enqueueOutgoing(shared_ptr<Frame>&& frame) {
  Autolock lock(&outgoingLock);
  outgoing.push_back(std::move(frame));
  waiting->insert(id);
}

shared_ptr<Frame> Channel::dequeueOutgoing() {
  Autolock lock(&outgoingLock);
  if (outgoing.empty()) return shared_ptr<Frame>();
  shared_ptr<Frame> frame = std::move(outgoing.front());
  outgoing.pop_front();
  return frame;
}
