#include "phone/Outbox.h"

#include <utility>

namespace phone {

void Outbox::add(Frame frame, bool encipher) {
  if (!interleaves_) return settle(std::move(frame), encipher);
  ++waiting_;
  waitingBytes_ += frame.payload.size();
  std::deque<Waiting>& queue = queues_[frame.channel];
  queue.push_back({std::move(frame), encipher});
}

void Outbox::addBytes(const Bytes& bytes) {
  settleAll();
  append(&ready_, bytes);
}

void Outbox::settleAll() {
  while (waiting_ > 0) settleNext();
}

Bytes Outbox::take(std::size_t enough) {
  while (waiting_ > 0 && ready_.size() < enough) settleNext();
  return std::exchange(ready_, {});
}

void Outbox::settle(Frame frame, bool encipher) {
  if (encipher && frame.has(flagEncrypted) && tls_ != nullptr && tls_->established()) {
    frame.payload = tls_->encrypt(frame.payload.data(), frame.payload.size());
  }
  append(&ready_, encodeFrame(frame));
}

void Outbox::settleNext() {
  do {
    lastChannel_ = (lastChannel_ + 1) % queues_.size();
  } while (queues_[lastChannel_].empty());
  Waiting next = std::move(queues_[lastChannel_].front());
  queues_[lastChannel_].pop_front();
  --waiting_;
  waitingBytes_ -= next.frame.payload.size();
  settle(std::move(next.frame), next.encipher);
}

}  // namespace phone
