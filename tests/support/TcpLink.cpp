#include "TcpLink.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace test {

TcpLink::TcpLink() {
  phone_ = std::make_unique<phone::PhoneLink>(quietPhone());
  car_ = std::make_unique<phone::CarServices>(phone_.get(), &timers_, heard_.options());
  phone_->observe(this);
}

bool TcpLink::runs(Number messages) {
  messages_ = messages;
  headUnit_.starts(&transport_);
  phone::Timers none;
  phone::Wake never;
  phone::SocketRunner(phone_.get(), &none, &never).run(std::move(sockets_.phone));
  return speaker_.valid() && speaker_.get() && phone_->end()->clean;
}

void TcpLink::onState(phone::LinkState state) {
  if (state != phone::LinkState::up) return;
  car_->open(*phone_->services());
  for (int sink = VIDEO; sink <= TELEPHONY; ++sink) {
    streams_.push_back(std::make_unique<NumberedStream>(phone_.get(), &timers_, sink));
    streams_.back()->goesOnTo(messages_);
  }
}

bool TcpLink::isDone() const {
  return heard_.speech().due() >= messages_ &&
         std::all_of(streams_.begin(), streams_.end(),
                     [this](auto& one) { return one->stats().acknowledged >= messages_; });
}

void TcpLink::onMessage(const phone::Message&) {
  // The phone hears nothing before its request is answered, which is when the callback has returned.
  if (!speaker_.valid() && car_->microphone() != nullptr && car_->microphone()->isOpen()) {
    speaker_ = std::async(std::launch::async, [this] {
      return headUnit_.microphoneHost->speaks(&headUnit_.microphone, messages_);
    });
  }
  if (phone_->state() == phone::LinkState::up && isDone()) phone_->sayByeBye();
}

void TcpLink::expectArrivals(Number messages) {
  for (int sink = VIDEO; sink <= TELEPHONY; ++sink) {
    EXPECT_EQ(headUnit_.playerOf(sink).played().words(), asDue(messages)) << "sink " << sink;
    EXPECT_FALSE(headUnit_.playerOf(sink).overrun()) << "sink " << sink;
  }
  EXPECT_EQ(heard_.speech().words(), asDue(messages));
  EXPECT_TRUE(phone_->violations().empty());
}

}  // namespace test
