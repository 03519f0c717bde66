#include "headunit/PhoneSource.h"

#include <poll.h>
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
constexpr milliseconds LAST_LINK_ENDS(2000);  // at the latest, once its phone has gone
constexpr int MOST_AT_ONCE = 8;               // there is a link to look after
constexpr std::uint64_t TOLD_OF = 3;          // while one phone is served

class Listener : public PhoneSource {
 public:
  Listener(FileDescriptor socket, Patience* patience) : socket_(std::move(socket)), patience_(patience) {}

  std::string place() const override { return "on " + localAddress(socket_).words(); }

  FileDescriptor next() override {
    isTold_ = false;
    newcomerSince_.reset();
    while (patience_->lasts()) {
      Address peer;
      FileDescriptor phone = acceptFrom(socket_, &peer);
      if (!phone) {
        waitForAnother(errno);
      } else if (hasGone(phone)) {
        spdlog::info("A phone that connected from {} has gone again.", peer.words());
      } else {
        spdlog::info("A phone connects from {}.", peer.words());
        anyCame_ = true;
        turnedAway_ = 0;
        return phone;
      }
    }
    return {};
  }

  int turnOthersAway() override {
    if (!canBeRead()) {
      newcomerSince_.reset();
      return socket_.get();
    }
    if (!newcomerSince_) newcomerSince_ = patience_->now();
    if (patience_->now() < *newcomerSince_ + LAST_LINK_ENDS) return -1;
    for (int i = 0; i < MOST_AT_ONCE; ++i) {
      Address peer;
      // Of those that cannot be taken, for want of descriptors say, the socket would tell without end.
      if (!acceptFrom(socket_, &peer)) {
        if (!isNobodyThere(errno)) return -1;
        newcomerSince_.reset();
        return socket_.get();
      }
      if (++turnedAway_ > TOLD_OF) continue;
      spdlog::warn("{} connects, too, and is turned away: a phone is connected already{}.", peer.words(),
                   turnedAway_ == TOLD_OF ? " (further ones are turned away without a word)" : "");
    }
    return socket_.get();
  }

 private:
  bool canBeRead() const {
    pollfd looked{socket_.get(), POLLIN, 0};
    return poll(&looked, 1, 0) != 0;
  }
  static bool isNobodyThere(int reason) { return reason == EAGAIN || reason == EWOULDBLOCK; }

  // A peer that cannot be taken, for want of descriptors say, goes on waiting: without a pause this would
  // spin.
  void waitForAnother(int reason) {
    if (isNobodyThere(reason)) {
      if (!std::exchange(isTold_, true))
        spdlog::info("Waiting for {} {}.", anyCame_ ? "the next phone" : "a phone", place());
      return patience_->waitUntil({}, socket_.get());
    }
    spdlog::warn("A phone that connects cannot be taken: {}.", std::strerror(reason));
    patience_->waitUntil(patience_->now() + AFTER_A_REFUSAL);
  }

  const FileDescriptor socket_;
  Patience* const patience_;
  bool anyCame_ = false;
  bool isTold_ = false;           // that it waits
  std::uint64_t turnedAway_ = 0;  // during this link
  std::optional<TimePoint> newcomerSince_;
};

class Caller : public PhoneSource {
 public:
  Caller(const Address& address, Patience* patience) : address_(address), patience_(patience) {}

  std::string place() const override { return "at " + address_.words(); }

  FileDescriptor next() override {
    const TimePoint givesUpAt = patience_->now() + CONNECT_LIMIT;
    bool isTold = false;
    if (everConnected_) pause();  // a phone that hangs up at once is not called without one
    for (; patience_->lasts(); pause()) {
      NoConnection why;
      FileDescriptor phone = connectTo(address_, CONNECT_LIMIT, *patience_->wake(), &why);
      if (phone) {
        everConnected_ = true;
        spdlog::info("Connected to the phone at {}.", address_.words());
        return phone;
      }
      if (!everConnected_ && (why.hostUnknown || patience_->now() >= givesUpAt)) {
        spdlog::error("Cannot connect to {}: {}; {}.", address_.words(), why.reason,
                      why.hostUnknown ? "check the address" : "start the phone first, with --listen");
        return {};
      }
      if (!std::exchange(isTold, true) && patience_->lasts())
        spdlog::info("Waiting for the phone {}: {}.", place(), why.reason);
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
