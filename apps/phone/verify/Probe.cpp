#include "phone/verify/Probe.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "phone/verify/TypeNames.h"

namespace phone::verify {

namespace {

constexpr Micros quietTime = 20'000;
constexpr Micros settleLimit = 500'000;
constexpr Micros farewellLimit = 500'000;

bool isPing(const Message& message) {
  return message.channel == 0 &&
         (message.type() == MESSAGE_PING_REQUEST || message.type() == MESSAGE_PING_RESPONSE);
}

}  // namespace

std::string hex(int type) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%04x", static_cast<unsigned int>(type));
  return text;
}

std::string hex(const Bytes& bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size() && i < 32; ++i) {
    char piece[8];
    std::snprintf(piece, sizeof piece, i == 0 ? "%02x" : " %02x", static_cast<unsigned int>(bytes[i]));
    text += piece;
  }
  return bytes.size() > 32 ? text + " ... (" + std::to_string(bytes.size()) + " bytes)" : text;
}

// ---- Links ----

void Probe::beginCheck(bool keepLink) {
  if (!keepLink) endLink();
  begin_.clear();
  seen_.clear();
  if (!link_) return;
  for (int channel = 0; channel < 256; ++channel) {
    const auto number = static_cast<std::uint8_t>(channel);
    const std::size_t count = link_->link().received(number).size();
    if (count > 0) begin_[number] = count;
  }
}

LinkOptions Probe::options() const {
  LinkOptions options;
  options.credentials = credentials_;
  options.identity.set_label_text("vantry-phone verify");
  return options;
}

void Probe::give(std::unique_ptr<LinkUnderTest> link) {
  link_ = std::move(link);
  services_.clear();
  channels_.clear();
  begin_.clear();
  seen_.clear();
}

void Probe::endLink() {
  if (!link_) return;
  PhoneLink& last = link_->link();
  violations_.insert(violations_.end(), last.violations().begin(), last.violations().end());
  if (isUp()) {
    last.sayByeBye();
    link_->runUntil([&last] { return last.end().has_value(); }, farewellLimit);
  }
  give(nullptr);
}

PhoneLink& Probe::freshLink(LinkOptions options) {
  endLink();
  std::string error;
  auto made = headUnit_->connect(std::move(options), &error);
  if (!made && headUnit_->interrupted()) throw Interrupted();
  if (!made) throw Mismatch{"a way to the head unit", error};
  give(std::move(made));
  return link_->link();
}

PhoneLink& Probe::freshUpLink() {
  PhoneLink& fresh = freshLink(options());
  runUntil([this] { return isUp(); }, bringUpLimit);
  if (isUp()) return fresh;
  const std::string came =
      fresh.end() ? fresh.end()->words() : std::string("the link is ") + nameOf(fresh.state());
  throw Mismatch{"a link that comes up", came};
}

bool Probe::isUp() const { return link_ && link_->link().state() == LinkState::up; }

PhoneLink& Probe::link() { return isUp() ? link_->link() : freshUpLink(); }

bool Probe::runUntil(const std::function<bool()>& done, Micros limit) {
  if (isSilent() && limit > firstByte_) {
    const bool settled = waitOn([&] { return done() || !isSilent(); }, firstByte_);
    if (!settled) return false;
    limit -= firstByte_;
  }
  return waitOn(done, limit);
}

bool Probe::waitOn(const std::function<bool()>& done, Micros limit) {
  const bool came = link_->runUntil(done, limit);
  if (headUnit_->interrupted()) throw Interrupted();
  return came;
}

void Probe::settle() {
  if (isUp()) {
    const std::size_t before = count(0, MESSAGE_PING_RESPONSE);
    link_->link().sendPing(++pings_);
    runUntil([&] { return link_->link().end() || count(0, MESSAGE_PING_RESPONSE) > before; }, settleLimit);
  }
  // The answer may have overtaken what was on its way on other channels, or on the head unit's other threads.
  runUntil([this] { return link_->link().end().has_value(); }, quietTime);
}

// ---- Services ----

const std::vector<Service>& Probe::services() {
  const auto& offered = link().services()->services();
  services_.assign(offered.begin(), offered.end());
  return services_;
}

std::uint8_t Probe::open(const Service& service) {
  PhoneLink& up = link();
  // A service has one channel at a time, and an earlier check may have left it open.
  if (const auto known = channels_.find(service.id()); known != channels_.end()) close(known->second);
  const std::uint8_t channel = up.unusedChannel();
  expect(channel != 0, "a channel that is free", "all are in use");
  up.openChannel(channel, service.id());
  runUntil([&] { return up.end() || up.channelState(channel) != ChannelState::opening; });
  expect(up.channelState(channel) == ChannelState::open,
         "service " + std::to_string(service.id()) + " opens on channel " + std::to_string(channel),
         whyNothing(channel));
  channels_[service.id()] = channel;
  return channel;
}

void Probe::close(std::uint8_t channel) {
  for (auto known = channels_.begin(); known != channels_.end();) {
    known = known->second == channel ? channels_.erase(known) : std::next(known);
  }
  link().closeChannel(channel);
}

std::uint8_t Probe::channelOf(const Service& service) {
  const auto known = channels_.find(service.id());
  return known != channels_.end() ? known->second : open(service);
}

// ---- What the head unit says ----

std::optional<Message> Probe::awaitMaybe(std::uint8_t channel, int type, Micros limit) {
  return awaitFitting(
      channel, type, [](const Message&) { return true; }, limit);
}

std::optional<Message> Probe::awaitFitting(std::uint8_t channel, int type,
                                           const std::function<bool(const Message&)>& fits, Micros limit) {
  std::size_t& seen = seen_[{channel, type}];
  std::size_t number = 0;
  std::size_t at = said(channel);
  std::optional<Message> found;
  const auto look = [&] {
    const auto& all = link_->link().received(channel);
    for (; !found && at < all.size(); ++at) {
      if (all[at].type() != type || number++ < seen) continue;
      ++seen;
      if (fits(all[at])) found = all[at];
    }
    return found.has_value();
  };
  runUntil([&] { return look() || link_->link().end(); }, limit);
  return found;
}

Message Probe::await(std::uint8_t channel, int type, const std::string& what, Micros limit) {
  auto message = awaitMaybe(channel, type, limit);
  if (!message) throw Mismatch{what + " (message " + typeOn(channel, type) + ")", whyNothing(channel)};
  return *message;
}

std::size_t Probe::said(std::uint8_t channel) const {
  const auto begin = begin_.find(channel);
  return begin == begin_.end() ? 0 : begin->second;
}

std::size_t Probe::count(std::uint8_t channel, int type) const {
  const auto& all = link_->link().received(channel);
  std::size_t number = 0;
  for (std::size_t i = said(channel); i < all.size(); ++i) number += all[i].type() == type ? 1 : 0;
  return number;
}

const Service* Probe::serviceOn(std::uint8_t channel) const {
  for (const auto& [id, its] : channels_) {
    const auto found = std::find_if(services_.begin(), services_.end(),
                                    [id = id](const Service& one) { return one.id() == id; });
    if (its == channel && found != services_.end()) return &*found;
  }
  return nullptr;
}

std::string Probe::typeOn(std::uint8_t channel, int type) const { return typeName(type, serviceOn(channel)); }

std::string Probe::cameOn(std::uint8_t channel) const {
  const auto& all = link_->link().received(channel);
  std::vector<std::pair<int, std::size_t>> counts;
  for (std::size_t i = said(channel); i < all.size(); ++i) {
    const auto known = std::find_if(counts.begin(), counts.end(),
                                    [&](const auto& count) { return count.first == all[i].type(); });
    if (known == counts.end()) {
      counts.emplace_back(all[i].type(), 1);
    } else {
      ++known->second;
    }
  }
  std::string words;
  for (const auto& [type, count] : counts) {
    words += (words.empty() ? "" : ", ") + typeOn(channel, type);
    if (count > 1) words += " " + std::to_string(count) + " times";
  }
  return words.empty() ? "nothing on channel " + std::to_string(channel)
                       : "on channel " + std::to_string(channel) + ": " + words;
}

std::string Probe::whyNothing(std::uint8_t channel) const {
  const auto& end = link_->link().end();
  return cameOn(channel) + (end ? "; the link has ended: " + end->words() : "");
}

// ---- Expectations ----

void Probe::expectRefused(std::uint8_t channel, const Bytes& message, const std::string& what) {
  link_->link().sendMessage(channel, message);
  const Message answer =
      await(channel, MESSAGE_UNEXPECTED_MESSAGE, "\"unexpected message\" in answer to " + what);
  expect(answer.bytes.size() == 2, "the bare bytes 00 ff in answer to " + what, hex(answer.bytes));
}

void Probe::expectTaken(std::uint8_t channel, const Bytes& message, const std::string& what) {
  const std::size_t before = count(channel, MESSAGE_UNEXPECTED_MESSAGE);
  link_->link().sendMessage(channel, message);
  settle();
  expect(!link_->link().end(), "the link lives on after " + what, whyNothing(channel));
  expect(count(channel, MESSAGE_UNEXPECTED_MESSAGE) == before, what + " is taken",
         "it was refused as unexpected");
}

void Probe::expectSilence(std::uint8_t channel, const Bytes& message, const std::string& what) {
  const auto spoken = [&] {
    std::size_t number = 0;
    for (const Message& one : link_->link().received(channel)) number += isPing(one) ? 0 : 1;
    return number;
  };
  const std::size_t before = spoken();
  link_->link().sendMessage(channel, message);
  settle();
  expect(!link_->link().end(), "the link lives on after " + what, whyNothing(channel));
  expect(spoken() == before, "no answer to " + what, cameOn(channel));
}

void Probe::expectAlive() {
  const std::int64_t number = ++pings_;
  link_->link().sendPing(number);
  const auto answered = [&] {
    for (const Message& one : link_->link().received(0)) {
      const auto response = one.type() == MESSAGE_PING_RESPONSE ? one.as<PingResponse>() : std::nullopt;
      if (response && response->timestamp() == number) return true;
    }
    return false;
  };
  expect(runUntil([&] { return answered() || link_->link().end(); }) && answered(),
         "the link lives on: a ping is answered", whyNothing(0));
}

}  // namespace phone::verify
