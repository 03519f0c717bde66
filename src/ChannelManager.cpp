#include "ChannelManager.h"

#include <utility>

#include "BigEndian.h"
#include "Log.h"
#include "MessageRouter.h"
#include "UnsentBytes.h"

// The table of channels, and the way of a frame in and out. Bytes are in FrameCodec.cpp, messages in
// Fragmentation.cpp.

namespace {

/// How many bytes of a message whose last fragment is there were announced and not sent.
unsigned int unsentOf(Channel* source) {
  return static_cast<unsigned int>(source->incomingTotal() - source->incomingLength());
}

}  // namespace

bool ChannelManager::init(MessageRouter* messageRouter) {
  router = messageRouter;
  running = true;
  sslWrapper = nullptr;
  Autolock lock(&channelsLock);
  for (shared_ptr<Channel>& channel : channels) channel = shared_ptr<Channel>();
  lastChannel = 255;
  return true;
}

void ChannelManager::prepareShutdown() {
  running = false;
  outgoingFrames.up();
}

void ChannelManager::shutdown() {
  router = nullptr;
  Autolock lock(&channelsLock);
  for (shared_ptr<Channel>& channel : channels) channel = shared_ptr<Channel>();
}

int ChannelManager::registerChannel(unsigned char channel, signed char priority) {
  Autolock lock(&channelsLock);
  if (channels[channel]) return STATUS_INVALID_CHANNEL;
  channels[channel] =
      shared_ptr<Channel>(new Channel(channel, static_cast<unsigned char>(priority + 127), &waiting));
  return STATUS_SUCCESS;
}

int ChannelManager::unregisterChannel(unsigned char channel) {
  Autolock lock(&channelsLock);
  if (!channels[channel]) return STATUS_INVALID_CHANNEL;
  channels[channel] = shared_ptr<Channel>();
  return STATUS_SUCCESS;
}

shared_ptr<Channel> ChannelManager::channelAt(int channel) {
  Autolock lock(&channelsLock);
  if (channel < 0 || channel > 255) return shared_ptr<Channel>();
  return channels[channel];
}

int ChannelManager::queueOutgoing(int channel, bool control, void* data, unsigned int length,
                                  bool encrypted) {
  const shared_ptr<Channel> target = channelAt(channel);
  if (!target) return STATUS_INVALID_CHANNEL;
  messageToFrames(channel, control, data, length, target, encrypted);
  return STATUS_SUCCESS;
}

int ChannelManager::queueOutgoing(int channel, bool control, void* data, unsigned int length) {
  return queueOutgoing(channel, control, data, length, true);
}

int ChannelManager::queueOutgoingUnencrypted(int channel, bool control, void* data, unsigned int length) {
  return queueOutgoing(channel, control, data, length, false);
}

int ChannelManager::queueIncoming(const shared_ptr<IoBuffer>& buffer) {
  if (!running) {
    sendFramingError();
    return STATUS_FRAMING_ERROR;
  }
  shared_ptr<Frame> frame = spareFrame ? std::move(spareFrame) : shared_ptr<Frame>(new Frame());
  if (decodeFrame(frame, buffer) == STATUS_FRAMING_ERROR) {
    sendFramingError();
    return STATUS_FRAMING_ERROR;
  }
  if (frame->has(FRAME_FLAG_CONTROL)) return handleChannelControl(frame, buffer);
  return deliver(std::move(frame));
}

int ChannelManager::deliver(shared_ptr<Frame> frame) {
  shared_ptr<Channel> channel;
  bool acceptable = false;
  bool complete = false;
  checkFragment(frame, &channel, &acceptable, &complete);  // what counts is `acceptable`
  if (!acceptable) {
    sendFramingError();
    return STATUS_FRAMING_ERROR;
  }
  if (frame->kind() == FRAME_ATOMIC) {  // nothing to gather: most frames are whole messages
    router.load()->routeMessage(frame->channelId, messageIn(&*frame));
    spareFrame = std::move(frame);
    return STATUS_SUCCESS;
  }
  channel->enqueueIncoming(frame);
  if (!complete) return STATUS_SUCCESS;

  const unsigned int unsent = unsentOf(&*channel);
  const shared_ptr<IoBuffer> message = framesToMessage(channel);
  if (!message) {
    sendFramingError();
    return STATUS_FRAMING_ERROR;
  }
  const UnsentBytes known(*message, unsent);
  router.load()->routeMessage(channel->id,
                              message);  // what an endpoint thinks of it is no failure of the link
  return STATUS_SUCCESS;
}

int ChannelManager::handleChannelControl(const shared_ptr<Frame>& frame, const shared_ptr<IoBuffer>&) {
  // The one framing error that leaves the link up: such a frame is only ignored.
  if (frame->kind() != FRAME_ATOMIC) return STATUS_FRAMING_ERROR;
  const int status = router.load()->routeChannelControlMsg(frame, frame->payload, frame->length);
  if (status == STATUS_FRAMING_ERROR) sendFramingError();
  return status;
}

void ChannelManager::sendFramingError() {
  running = false;
  print_critical_i("[LHU] Sending Framing Error notification!");
  unsigned char message[2];
  writeBigEndian16(message, MESSAGE_FRAMING_ERROR);
  queueOutgoing(0, false, message, sizeof message, false);
  if (MessageRouter* const target = router) target->unrecoverableError();
}

bool ChannelManager::getEncodedFrame(IoBuffer* out) {
  if (!running) return false;
  if (!outgoingFrames.down()) return false;
  if (!running) return false;
  return extractEncodedFrame(out);
}

bool ChannelManager::extractEncodedFrame(IoBuffer* out) {
  const shared_ptr<Channel> channel = nextChannelToServe();
  if (!channel) return false;
  encodeFrame(channel->dequeueOutgoing(), out);  // only this thread takes frames, so there still is one
  return true;
}

shared_ptr<Channel> ChannelManager::nextChannelToServe() {
  Autolock lock(&channelsLock);
  // Once around, in ascending order from the one after the last served.
  for (int looked = 0; looked < 256;) {
    const auto from = static_cast<unsigned char>(lastChannel + 1 + looked);
    const int candidate = waiting.firstFrom(from);
    if (candidate < 0) break;
    const auto steps = static_cast<unsigned char>(candidate - from);
    looked += steps + 1;
    if (looked > 256) break;
    if (!channels[candidate]) {
      waiting.erase(static_cast<unsigned char>(candidate));  // closed with frames on it
    } else if (channels[candidate]->hasOutgoing()) {
      lastChannel = candidate;
      return channels[candidate];
    }
  }
  return shared_ptr<Channel>();
}
