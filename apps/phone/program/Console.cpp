#include "phone/program/Console.h"

#include <spdlog/spdlog.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace phone {

namespace {

constexpr Micros drawInterval = 250'000;
constexpr int mostWarnings = 5;  // of a kind: a head unit that errs in one message errs in each

}  // namespace

Console::Console(PhoneLink* link, Timers* timers) : link_(link), timers_(timers) { link_->observe(this); }

void Console::watch(PhoneSession* session) {
  session->onTrouble([this](const std::string& what) {
    clear();
    spdlog::warn("{}", what);
  });
  if (isatty(STDERR_FILENO) == 0) return;
  session_ = session;
  draw();
}

void Console::draw() {
  if (link_->end()) return;
  const MediaStream* video = session_->video();
  if (video != nullptr && video->state() == MediaStream::State::streaming) {
    const StreamStats& stats = video->stats();
    const double seconds = static_cast<double>(timers_->now() - stats.started) / 1e6;
    const double latency =
        stats.ackLatencies.empty() ? 0 : static_cast<double>(stats.ackLatencies.back()) / 1000.0;
    std::fprintf(stderr, "\r\033[K%llu frames, %.1f s, %.2f MB, last acknowledged after %.1f ms",
                 static_cast<unsigned long long>(stats.units), seconds,
                 static_cast<double>(stats.bytes) / 1e6, latency);
    drawn_ = true;
  }
  timers_->after(drawInterval, [this] { draw(); });
}

void Console::clear() {
  if (drawn_) std::fputs("\r\033[K", stderr);
  drawn_ = false;
}

void Console::onState(LinkState state) {
  clear();
  if (state == LinkState::awaitingAuth) {
    spdlog::info("TLS stands: {}, head unit is \"{}\"", link_->tls()->cipher(), link_->tls()->peerName());
  } else if (state == LinkState::up) {
    tellServices();
  } else {
    spdlog::debug("the link is now {}", nameOf(state));
  }
}

void Console::tellServices() const {
  const ServiceDiscoveryResponse& services = *link_->services();
  spdlog::info("head unit {} {} (car: {} {} {}) offers {} services", services.head_unit_make(),
               services.head_unit_model(), services.make(), services.model(), services.year(),
               services.services_size());
}

void Console::onMessage(const Message& message) {
  if (message.type() == MESSAGE_UNEXPECTED_MESSAGE) {
    warn(&unexpected_, "head unit: did not expect a message on channel " + std::to_string(message.channel));
  } else if (spdlog::should_log(spdlog::level::debug)) {
    clear();
    spdlog::debug("channel {}: received type {:#06x}, {} bytes", message.channel, message.type(),
                  message.bytes.size());
  }
}

void Console::onViolation(const std::string& what) { warn(&violations_, "head unit broke a rule: " + what); }

void Console::warn(int* times, const std::string& what) {
  *times = std::min(*times + 1, mostWarnings + 1);
  if (*times > mostWarnings && !spdlog::should_log(spdlog::level::debug)) return;
  clear();
  spdlog::warn("{}{}", what, *times == mostWarnings ? " (further ones are told only with --verbose)" : "");
}

}  // namespace phone
