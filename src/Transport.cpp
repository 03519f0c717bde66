#include "Transport.h"

#include <cstring>

#include "Log.h"
#include "VantryReceiver.h"

namespace {

constexpr unsigned int FIXED_HEADER = 4;  // what tells how long a frame is
constexpr int FATAL = -1;
constexpr int TRY_AGAIN = -2;

}  // namespace

Transport::Transport(VantryReceiver* vantryReceiver) : receiver(vantryReceiver) {
  readerThread.transport = this;
  writerThread.transport = this;
}

Transport::~Transport() = default;

bool Transport::start() {
  const bool reading = readerThread.start();
  const bool writing = writerThread.start();
  return reading | writing;
}

void Transport::requestStop() {
  stopRequested = true;
  receiver->prepareShutdown();
  abortTransfers();
}

void Transport::waitForExit() {
  readerThread.join();
  print_debug_i("[LHU] Reader thread joined");
  writerThread.join();
  print_debug_i("[LHU] Writer thread joined");
}

bool Transport::readOrFail(void* data, unsigned int length) {
  auto* cursor = static_cast<unsigned char*>(data);
  int remaining = static_cast<int>(length);
  while (remaining > 0 && !stopRequested) {
    const int count = read(cursor, static_cast<unsigned int>(remaining));
    if (count == TRY_AGAIN) continue;
    if (count == FATAL) {
      print_critical_i("[LHU] Encounted fatal error on read.");
      return false;
    }
    remaining -= count;
    cursor += count;
  }
  return remaining == 0;
}

bool Transport::writeOrFail(void* data, unsigned int length) {
  auto* cursor = static_cast<unsigned char*>(data);
  int remaining = static_cast<int>(length);
  while (remaining > 0 && !stopRequested) {
    const int count = write(cursor, static_cast<unsigned int>(remaining));
    if (count == TRY_AGAIN) continue;
    if (count == FATAL) {
      print_critical_i("[LHU] Encounted fatal error on write.");
      return false;
    }
    remaining -= count;
    cursor += count;
  }
  return remaining == 0;
}

void VantryReaderThread::run() {
  while (!transport->stopRequested && readFrame()) {
  }
  print_debug_i("[LHU] Reader thread exiting.");
}

bool VantryReaderThread::readFrame() {
  unsigned char header[FIXED_HEADER];
  const bool haveHeader = transport->readOrFail(header, sizeof header);
  if (transport->stopRequested) {
    print_debug_i("[LHU] Reader thread shutting down on request.");
    return false;
  }
  if (!haveHeader) {
    transport->requestStop();
    return false;
  }
  const int rest = transport->receiver->getAdditionalBytesToRead(header);
  if (rest < 1) {
    print_critical_i("[LHU] Bad payload length %d. Shutting down due to potential framing error.", rest);
    transport->requestStop();
    return false;
  }
  const auto additional = static_cast<unsigned int>(rest);
  const shared_ptr<IoBuffer> frame = transport->receiver->allocateBuffer(FIXED_HEADER + additional);
  memcpy(frame->data, header, sizeof header);
  if (!transport->readOrFail(frame->data + FIXED_HEADER, additional)) {
    transport->requestStop();
    return false;
  }
  transport->receiver->queueIncoming(frame);  // a framing error reaches the host by its callback
  return true;
}

void VantryWriterThread::run() {
  IoBuffer frame;
  while (!transport->stopRequested) {
    if (!transport->receiver->getEncodedFrame(&frame)) continue;
    if (transport->stopRequested) break;
    if (!transport->writeOrFail(frame.content(), frame.size())) {
      transport->requestStop();
      break;
    }
  }
  print_debug_i("[LHU] Writer thread exiting.");
}
