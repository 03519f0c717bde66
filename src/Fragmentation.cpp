// ChannelManager's half that cuts messages into frames and puts received fragments together.

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "ChannelManager.h"
#include "SslWrapper.h"
#include "protos.pb.h"

namespace {

constexpr unsigned int ROOM_TO_ENCIPHER = SslWrapper::MOST_EXPANSION + 4;  // the header of a whole message
constexpr unsigned int CHEAP_TO_COPY = 2048;  // below it to place a record costs more than to copy it

/// How much longer than a message its storage is, for it to go on to the writer with the message enciphered
/// in it.
unsigned int roomFor(unsigned int length, bool encrypted) {
  return encrypted && length >= CHEAP_TO_COPY && length <= MAX_FRAGMENT_PAYLOAD ? ROOM_TO_ENCIPHER : 0;
}

int kindOfFragment(unsigned int offset, unsigned int left) {
  const int first = offset == 0 ? FRAME_FIRST : 0;
  const int last = left <= MAX_FRAGMENT_PAYLOAD ? FRAME_LAST : 0;
  return first | last;
}

/// Storage for a message of which `sent` bytes are there; the others are zero, and memory for them is touched
/// only when somebody reads it.
bool allocateMessage(IoBuffer* message, unsigned int total, unsigned long long sent) {
  constexpr unsigned int CHEAP_TO_CLEAR = 64 * 1024;
  // From this size on the C library takes zeroed pages from the system instead of clearing memory that it
  // has: below, that depends on what it was given back before, and more than the announced size costs
  // nothing.
  constexpr std::size_t ALWAYS_UNTOUCHED = 33U << 20;

  const bool complete = sent == total;
  const std::size_t size =
      total - sent <= CHEAP_TO_CLEAR ? total : std::max<std::size_t>(total, ALWAYS_UNTOUCHED);
  message->data = static_cast<unsigned char*>(complete ? malloc(size) : calloc(size, 1));
  if (message->data == nullptr && total > 0) return false;
  message->capacity = message->end = total;
  return true;
}

}  // namespace

void ChannelManager::messageToFrames(int channel, bool control, void* data, unsigned int length,
                                     const shared_ptr<Channel>& target, bool encrypted) {
  const unsigned int room = roomFor(length, encrypted);
  shared_ptr<IoBuffer> message(new IoBuffer(length + room));
  message->capacity = message->end = length;
  if (length == 0) return;
  memcpy(message->data, data, length);
  const int flags = (encrypted ? FRAME_FLAG_ENCRYPTED : 0) | (control ? FRAME_FLAG_CONTROL : 0);

  for (unsigned int offset = 0; offset < length;) {
    const unsigned int left = length - offset;
    const int kind = kindOfFragment(offset, left);
    shared_ptr<Frame> frame(new Frame());
    frame->channelId = static_cast<unsigned char>(channel);
    frame->flags = static_cast<unsigned char>(kind | flags);
    frame->length = static_cast<unsigned short>(left < MAX_FRAGMENT_PAYLOAD ? left : MAX_FRAGMENT_PAYLOAD);
    frame->totalLength = kind == FRAME_FIRST ? length : 0;
    frame->payload = message->data + offset;
    frame->room = room;
    offset += frame->length;
    // The last one takes the reference over: a small message costs hardly more than its counting.
    frame->buffer = offset < length ? message : std::move(message);
    target->enqueueOutgoing(std::move(frame));
    outgoingFrames.up();
  }
}

int ChannelManager::checkFragment(const shared_ptr<Frame>& frame, shared_ptr<Channel>* channel,
                                  bool* acceptable, bool* complete) {
  shared_ptr<Channel> source = channelAt(frame->channelId);
  if (!source) {
    *acceptable = false;
    return STATUS_FRAMING_ERROR;
  }
  const int kind = frame->kind();
  bool underWay = false;
  if (!source->hasIncoming()) {
    *acceptable = kind == FRAME_ATOMIC || kind == FRAME_FIRST;
  } else {
    const int previous = source->peekLastIncoming()->kind();
    underWay = previous == FRAME_FIRST || previous == FRAME_MIDDLE;
    *acceptable = underWay && (kind == FRAME_MIDDLE || kind == FRAME_LAST);
  }
  *complete = *acceptable && (kind == FRAME_ATOMIC || kind == FRAME_LAST);

  if (!frame->has(FRAME_FLAG_ENCRYPTED) && frame->channelId != 0) {
    *acceptable = false;
    return STATUS_AUTHENTICATION_FAILURE;
  }
  // Only what was announced may arrive, and that is judged before anything is stored.
  const unsigned int total = underWay ? source->incomingTotal() : frame->totalLength;
  if (*acceptable && kind != FRAME_ATOMIC && source->incomingLength() + frame->length > total) {
    *acceptable = false;
    return STATUS_FRAMING_ERROR;
  }
  *channel = std::move(source);
  return STATUS_SUCCESS;
}

shared_ptr<IoBuffer> ChannelManager::messageIn(Frame* frame) {
  shared_ptr<IoBuffer> message = std::move(frame->buffer);
  message->start = static_cast<unsigned int>(frame->payload - message->data);
  message->end = message->start + frame->length;
  return message;
}

shared_ptr<IoBuffer> ChannelManager::framesToMessage(const shared_ptr<Channel>& source) {
  shared_ptr<Frame> frame = source->dequeueIncoming();
  if (frame->kind() == FRAME_ATOMIC) return messageIn(&*frame);

  const unsigned long long sent = frame->length + source->incomingLength();
  assert(sent <= frame->totalLength);  // checkFragment has let no more in
  shared_ptr<IoBuffer> message(new IoBuffer());
  if (!allocateMessage(&*message, frame->totalLength, sent)) return shared_ptr<IoBuffer>();
  unsigned char* cursor = message->data;
  for (;;) {
    if (frame->length > 0) memcpy(cursor, frame->payload, frame->length);
    cursor += frame->length;
    if (!source->hasIncoming()) return message;
    frame = source->dequeueIncoming();
  }
}
