#include "phone/MediaStream.h"

#include <algorithm>
#include <utility>

namespace phone {

namespace {

// A stream that has fallen behind by more goes on from where it is, rather than rush to catch up.
constexpr Micros patience = 500'000;

// A head unit may allow any number of unacknowledged messages; what the connection has not taken yet is not
// allowed to grow with it.
constexpr std::size_t mostWaiting = std::size_t{1} << 20;
constexpr Micros waitForOutput = 1000;

}  // namespace

MediaStream::MediaStream(PhoneLink* link, Timers* timers, StreamOptions options, Opener opener, Done done)
    : link_(link), timers_(timers), options_(options), opener_(std::move(opener)), done_(std::move(done)) {}

MediaStream::~MediaStream() {
  cancelTimers();
  if (channel_ != 0) link_->attach(channel_, nullptr);
}

void MediaStream::start(std::uint8_t channel, int serviceId) {
  channel_ = channel;
  state_ = State::opening;
  limit("open the channel");
  link_->openChannel(channel, serviceId, this);
}

void MediaStream::stop() {
  if (state_ != State::idle) finish({true, Side::phone, "stopped the stream", ""});
}

// ---- What the head unit says ----

void MediaStream::onOpened() {
  state_ = State::settingUp;
  limit("answer Setup");
  Setup setup;
  setup.set_type(options_.codec);
  link_->send(channel_, MESSAGE_SETUP, setup);
}

void MediaStream::onRefused(MessageStatus status) {
  fail("refused the channel (status " + std::to_string(status) + ")", "the service may be in use already");
}

void MediaStream::onMessage(const Message& message) {
  if (isOver()) return;
  switch (message.type()) {
    case MESSAGE_CONFIG: return onConfig(message);
    case MESSAGE_ACK: return onAck(message);
    case MESSAGE_UNEXPECTED_MESSAGE:
      return fail("does not accept a message of the stream",
                  "the service that was opened may be another than its list says");
    default: return;
  }
}

void MediaStream::onClosed() {
  if (link_->end()) return finish(*link_->end());
  fail("closed the channel", "its own messages may tell the reason");
}

void MediaStream::onConfig(const Message& message) {
  const auto config = message.as<Config>();
  if (!config) return fail("its Config does not parse", "a required field is missing, or it is damaged");
  maxUnacked_ = config->max_unacked();
  if (state_ != State::settingUp) return pump();
  if (config->status() != Config_Status_STATUS_READY) return limit("become ready after asking to wait");
  if (maxUnacked_ == 0) {
    return fail("allows no message to be unacknowledged (max_unacked is 0)", "it must allow at least one");
  }
  std::uint32_t index = 0;
  LinkEnd problem;
  const std::vector<std::uint32_t> allowed(config->configuration_indices().begin(),
                                           config->configuration_indices().end());
  feed_ = opener_(allowed, &index, &problem);
  if (feed_) return begin(index);
  finish(problem);
}

void MediaStream::begin(std::uint32_t index) {
  Start start;
  start.set_session_id(options_.sessionId);
  start.set_configuration_index(index);
  link_->send(channel_, MESSAGE_START, start);
  const Bytes codecConfig = feed_->codecConfig();
  if (!codecConfig.empty()) link_->send(channel_, MESSAGE_CODEC_CONFIG, codecConfig);
  cancelTimers();
  stats_.started = timers_->now();
  state_ = State::streaming;
  pump();
}

void MediaStream::onAck(const Message& message) {
  const auto ack = message.as<Ack>();
  if (!ack) return fail("an Ack does not parse", "a required field is missing, or it is damaged");
  if (ack->session_id() != options_.sessionId) return;
  const std::size_t count = std::min<std::size_t>(ack->ack(), sentAt_.size());
  if (count < ack->ack()) stats_.surplusAcks += ack->ack() - count;
  for (std::size_t i = 0; i < count; ++i) {
    stats_.ackLatencies.push_back(timers_->now() - sentAt_.front());
    sentAt_.pop_front();
  }
  stats_.acknowledged += count;
  if (state_ == State::draining && sentAt_.empty()) return finishPlayed();
  if (state_ != State::streaming) return;
  if (sentAt_.empty()) {
    cancelLimit();
  } else if (count > 0) {
    limit("acknowledge");
  }
  pump();
}

// ---- Sending ----

void MediaStream::pump() {
  while (state_ == State::streaming && hasRoom() && fetch() && !waitsUntil(next_->due)) sendUnit();
}

bool MediaStream::hasRoom() {
  if (link_->outputSize() < mostWaiting) return true;
  pumpAt(timers_->now() + waitForOutput);
  return false;
}

void MediaStream::pumpAt(Micros due) {
  if (pace_) timers_->cancel(*pace_);
  pace_ = timers_->at(due, [this] { pump(); });
}

// A unit is asked for as late as possible, so that a live picture is as fresh as it can be.
bool MediaStream::fetch() {
  if (options_.unitLimit != 0 && stats_.units == options_.unitLimit) return drain();
  if (sentAt_.size() >= maxUnacked_) return false;
  if (next_) return true;
  const std::optional<Micros> due = feed_->nextDue();
  if (due && waitsUntil(*due)) return false;
  MediaUnit unit;
  switch (feed_->next(&unit)) {
    case MediaFeed::Pull::unit: next_ = std::move(unit); return true;
    case MediaFeed::Pull::later: return false;
    case MediaFeed::Pull::end: break;
  }
  return drain();
}

bool MediaStream::waitsUntil(Micros time) {
  if (horizon_) return time > *horizon_;
  if (!options_.paced) return false;
  const Micros due = dueAt(time);
  if (due <= timers_->now()) return false;
  pumpAt(due);
  return true;
}

// A stream that begins late joins the others where they are; one that falls behind later holds them up.
Micros MediaStream::dueAt(Micros time) {
  MediaClock& clock = options_.clock != nullptr ? *options_.clock : ownClock_;
  const Micros now = timers_->now();
  if (!clock.runs()) clock.set(time, now);
  const Micros late = now - clock.at(origin_ + time);
  if (late > patience && stats_.units == 0) {
    origin_ += late;
  } else if (late > patience) {
    clock.set(origin_ + time, now);
  }
  return clock.at(origin_ + time);
}

void MediaStream::follow(Micros time) {
  horizon_ = time;
  pump();
}

void MediaStream::sendUnit() {
  Bytes message;
  message.reserve(10 + next_->data.size());
  appendBigEndian(&message, static_cast<std::uint16_t>(MESSAGE_MEDIA_DATA));
  appendBigEndian(&message, static_cast<std::uint64_t>(origin_ + next_->timestamp));
  append(&message, next_->data);
  link_->sendMessage(channel_, message);

  if (sentAt_.empty()) limit("acknowledge");
  sentAt_.push_back(timers_->now());
  ++stats_.units;
  stats_.bytes += next_->data.size();
  stats_.mostUnacknowledged = std::max(stats_.mostUnacknowledged, sentAt_.size());
  feed_->onSent(*next_);
  next_.reset();
}

bool MediaStream::drain() {
  cancelTimers();
  state_ = State::draining;
  if (sentAt_.empty()) {
    finishPlayed();
  } else {
    limit_ = timers_->after(options_.drainLimit, [this] { finishPlayed(); });
  }
  return false;
}

// ---- Ends ----

void MediaStream::finishPlayed() {
  const std::string problem = feed_->problem();
  if (problem.empty()) return finish({true, Side::phone, "played the stream to its end", ""});
  finish({false, Side::phone, problem, "what came before was played; repair the file or choose another"});
}

void MediaStream::fail(const std::string& what, const std::string& advice) {
  finish({false, Side::headUnit, what, advice});
}

void MediaStream::finish(const LinkEnd& end) {
  if (isOver()) return;
  const bool running = state_ == State::streaming || state_ == State::draining;
  if (running && !link_->end()) link_->send(channel_, MESSAGE_STOP, Stop());
  cancelTimers();
  stats_.finished = timers_->now();
  state_ = end.clean ? State::stopped : State::failed;
  const Done done = std::exchange(done_, nullptr);
  if (done) done(end);
}

void MediaStream::limit(const char* awaited) {
  cancelLimit();
  const std::string what = std::string("took too long to ") + awaited;
  limit_ = timers_->after(options_.answerLimit, [this, what] { fail(what, "it may be stuck; restart it"); });
}

void MediaStream::cancelLimit() {
  if (limit_) timers_->cancel(*limit_);
  limit_.reset();
}

void MediaStream::cancelTimers() {
  cancelLimit();
  if (pace_) timers_->cancel(*pace_);
  pace_.reset();
}

}  // namespace phone
