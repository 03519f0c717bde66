#include "headunit/PhoneSource.h"

#include <spdlog/spdlog.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace headunit {
namespace {

constexpr milliseconds CONNECT_LIMIT(3000);
constexpr milliseconds BETWEEN_TRIES(200);
constexpr milliseconds AFTER_A_REFUSAL(1000);

class Listener : public PhoneSource {
 public:
  Listener(FileDescriptor socket, Patience* patience) : socket_(std::move(socket)), patience_(patience) {}

  FileDescriptor next() override {
    while (patience_->lasts()) {
      Address peer;
      FileDescriptor phone = acceptFrom(socket_, &peer);
      if (phone) {
        spdlog::info("A phone connects from {}.", peer.words());
        return phone;
      }
      waitForAnother(errno);
    }
    return {};
  }

 private:
  // A peer that cannot be taken, for want of descriptors say, goes on waiting: without a pause this would
  // spin.
  void waitForAnother(int reason) {
    if (reason == EAGAIN || reason == EWOULDBLOCK) return patience_->waitUntil({}, socket_.get());
    spdlog::warn("A phone that connects cannot be taken: {}.", std::strerror(reason));
    patience_->waitUntil(patience_->now() + AFTER_A_REFUSAL);
  }

  const FileDescriptor socket_;
  Patience* const patience_;
};

class Caller : public PhoneSource {
 public:
  Caller(const Address& address, Patience* patience) : address_(address), patience_(patience) {}

  FileDescriptor next() override {
    const TimePoint givesUpAt = patience_->now() + CONNECT_LIMIT;
    if (everConnected_) pause();  // a phone that hangs up at once is not called without one
    for (; patience_->lasts(); pause()) {
      std::string error;
      FileDescriptor phone = connectTo(address_, CONNECT_LIMIT, *patience_->wake(), &error);
      if (phone) {
        everConnected_ = true;
        spdlog::info("Connected to the phone at {}.", address_.words());
        return phone;
      }
      if (!everConnected_ && patience_->now() >= givesUpAt) {
        spdlog::error("Cannot connect to {}: {}; start the phone first, with --listen.", address_.words(),
                      error);
        return {};
      }
    }
    return {};
  }

 private:
  void pause() {
    if (patience_->lasts()) patience_->waitUntil(patience_->now() + BETWEEN_TRIES);
  }

  const Address address_;
  Patience* const patience_;
  bool everConnected_ = false;
};

}  // namespace

std::unique_ptr<PhoneSource> phonesThatCall(const Address& address, Patience* patience) {
  std::string error;
  FileDescriptor listener = listenOn(address, &error);
  if (!listener) {
    spdlog::error("Cannot wait for phones on {}: {}; choose another with --listen.", address.words(), error);
    return nullptr;
  }
  std::printf("listening on %s\n", localAddress(listener).words().c_str());
  std::fflush(stdout);
  return std::make_unique<Listener>(std::move(listener), patience);
}

std::unique_ptr<PhoneSource> phoneToCall(const Address& address, Patience* patience) {
  return std::make_unique<Caller>(address, patience);
}

}  // namespace headunit
