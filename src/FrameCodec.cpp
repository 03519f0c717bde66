// ChannelManager's half that works on the bytes of a frame:
//
//     0        1      2       4                    4 or 8
//     channel  flags  length  total length         payload
//     8 bits   8      16      32, FRAME_FIRST only

#include <cstring>
#include <utility>

#include "BigEndian.h"
#include "ChannelManager.h"
#include "Log.h"
#include "MessageRouter.h"
#include "SslWrapper.h"

namespace {

constexpr unsigned int SHORT_HEADER = 4;
constexpr unsigned int LONG_HEADER = 8;

int framingError(unsigned long size, int length) {
  print_critical_i("[LHU] Framing error: len=%lu framelen=%d", size, length);
  return STATUS_FRAMING_ERROR;
}

unsigned int headerSize(const Frame& frame) { return frame.totalLength != 0 ? LONG_HEADER : SHORT_HEADER; }

void writeHeader(const Frame& frame, unsigned int size, unsigned char* at) {
  at[0] = frame.channelId;
  at[1] = frame.flags;
  writeBigEndian16(at + 2, static_cast<unsigned short>(size));
  if (headerSize(frame) == LONG_HEADER) writeBigEndian32(at + SHORT_HEADER, frame.totalLength);
}

/// Makes the storage of `frame`, of which `size` bytes count, that of `out`.
void takeStorage(Frame* frame, unsigned int size, IoBuffer* out) {
  std::swap(frame->buffer->data, out->data);
  out->start = 0;
  out->capacity = out->end = size;
  frame->payload = nullptr;
  frame->length = 0;
  frame->room = 0;
  frame->buffer = shared_ptr<IoBuffer>();
}

}  // namespace

int ChannelManager::getAdditionalBytesToRead(const unsigned char* header) {
  const bool first = (header[1] & FRAME_ATOMIC) == FRAME_FIRST;
  return readBigEndian16(header + 2) + static_cast<int>(first ? LONG_HEADER - SHORT_HEADER : 0);
}

int ChannelManager::decodeFrame(const shared_ptr<Frame>& frame, const shared_ptr<IoBuffer>& buffer) {
  unsigned char* const start = buffer->content();
  const unsigned int size = buffer->size();
  if (size < SHORT_HEADER) return framingError(size, 0);
  frame->channelId = start[0];
  frame->flags = start[1];
  frame->length = readBigEndian16(start + 2);

  const unsigned int header = frame->kind() == FRAME_FIRST ? LONG_HEADER : SHORT_HEADER;
  if (size != header + frame->length) return framingError(size, frame->length);
  frame->totalLength = header == LONG_HEADER ? readBigEndian32(start + SHORT_HEADER) : 0;
  frame->payload = start + header;
  frame->buffer = buffer;

  SslWrapper* const wrapper = sslWrapper;
  if (wrapper != nullptr && frame->has(FRAME_FLAG_ENCRYPTED) && !decryptInPlace(&*frame, wrapper)) {
    return STATUS_FRAMING_ERROR;
  }
  return STATUS_SUCCESS;
}

bool ChannelManager::decryptInPlace(Frame* frame, SslWrapper* wrapper) {
  int count = wrapper->decryptionPipelineEnqueue(frame->payload, frame->length);
  if (count < 1) {
    print_critical_i("[LHU] Failed to enqueue into decryption pipeline!");
    return false;
  }
  unsigned char* cursor = frame->payload;
  const unsigned char* const limit = frame->payload + frame->length;
  frame->length = 0;
  for (; count > 0; count = wrapper->decryptionPipelinePending()) {
    if (count > limit - cursor) count = static_cast<int>(limit - cursor);
    count = wrapper->decryptionPipelineDequeue(cursor, static_cast<unsigned int>(count));
    if (count < 1) break;
    frame->length = static_cast<unsigned short>(frame->length + count);
    cursor += count;
  }
  if (count == 0) return true;
  print_critical_i("[LHU] Failed to dequeue from decryption pipeline!");
  return false;
}

void ChannelManager::encodeFrame(const shared_ptr<Frame>& frame, IoBuffer* out) {
  SslWrapper* const wrapper = frame->has(FRAME_FLAG_ENCRYPTED) ? sslWrapper.load() : nullptr;
  if (wrapper != nullptr) return encipherFrame(&*frame, wrapper, out);

  const unsigned int header = headerSize(*frame);
  out->resize(header + frame->length);
  writeHeader(*frame, frame->length, out->data);
  memcpy(out->data + header, frame->payload, frame->length);
}

void ChannelManager::encipherFrame(Frame* frame, SslWrapper* wrapper, IoBuffer* out) {
  const unsigned int header = headerSize(*frame);
  // OpenSSL has taken in all of the plaintext before it gives out its record, which may so replace it.
  const int size = frame->room > header ? wrapper->encryptionPipelineEnqueue(
                                              frame->payload, frame->length, frame->buffer->data + header,
                                              frame->length + frame->room - header)
                                        : wrapper->encryptionPipelineEnqueue(frame->payload, frame->length);
  if (size < 0) {
    // The writer then sends the former frame again; the host, told here, is about to stop the link.
    router.load()->unrecoverableError();
    return;
  }
  const unsigned int length = static_cast<unsigned int>(size);
  if (length > 0 && length == wrapper->encryptionPipelinePlaced()) {
    takeStorage(frame, header + length, out);
  } else {
    out->resize(header + length);
  }
  writeHeader(*frame, length, out->data);
  if (wrapper->encryptionPipelineDequeue(out->data + header, length) < 0) {
    router.load()->unrecoverableError();
  }
}
