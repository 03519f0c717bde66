#ifndef PHONE_SERVICES_SERVICEPLAYER_H
#define PHONE_SERVICES_SERVICEPLAYER_H

#include "phone/PhoneLink.h"
#include "phone/Timers.h"

namespace phone {

/// Plays the phone on one service's channel. `link` and `timers` outlive it.
class ServicePlayer : public ChannelHandler {
 public:
  ServicePlayer(PhoneLink* link, Timers* timers) : link_(link), timers_(timers) {}
  ~ServicePlayer() override { rest(); }
  ServicePlayer(const ServicePlayer&) = delete;
  ServicePlayer& operator=(const ServicePlayer&) = delete;

  /// Opens the lowest channel that is free. Once.
  void start(int serviceId) {
    channel_ = link_->unusedChannel();
    link_->openChannel(channel_, serviceId, this);
  }
  void onClosed() override { rest(); }

 protected:
  void send(std::uint16_t type, const google::protobuf::MessageLite& record) {
    link_->send(channel_, type, record);
  }
  /// A message that is no record.
  void sendBytes(const Bytes& message) { link_->sendMessage(channel_, message); }
  Micros now() const { return timers_->now(); }
  /// Has onTime called after `delay`, in place of an earlier wish.
  void wake(Micros delay) {
    rest();
    wish_ = timers_->after(delay, [this] {
      wish_.reset();
      onTime();
    });
  }
  void rest() {
    if (wish_) timers_->cancel(*wish_);
    wish_.reset();
  }
  virtual void onTime() {}

 private:
  PhoneLink* link_;
  Timers* timers_;
  std::uint8_t channel_ = 0;
  std::optional<Timers::Id> wish_;
};

}  // namespace phone

#endif
