#include "phone/PhoneSession.h"

#include <algorithm>
#include <utility>

namespace phone {

namespace {

constexpr Micros watchInterval = 1'000'000;

}  // namespace

PhoneSession::PhoneSession(PhoneLink* link, Timers* timers, SessionOptions options, VideoFactory video)
    : link_(link),
      timers_(timers),
      options_(std::move(options)),
      makeVideo_(std::move(video)),
      car_(link, timers, options_.car),
      sounds_(link, timers, &clock_, options_.stream.paced) {
  options_.stream.clock = &clock_;
  link_->observe(this);
  sounds_.onProblem([this](AudioStreamType type, const LinkEnd& end) {
    addTrouble(std::string(nameOf(type)) + " sound", end);
  });
  car_.onProblem([this](const LinkEnd& end) { addTrouble("microphone", end); });
}

void PhoneSession::start() {
  limit_ = timers_->after(options_.bringUpLimit, [this] {
    link_->fail(Side::headUnit, std::string("took too long, with the link ") + nameOf(link_->state()),
                "check that a head unit is at the other end, and that it is not stuck");
  });
}

void PhoneSession::interrupt() {
  if (link_->state() != LinkState::up) return link_->finish({true, Side::phone, "was interrupted", ""});
  if (video_) {
    video_->stop();  // Its end leaves the link.
  } else {
    leave();
  }
}

LinkEnd PhoneSession::outcome() const {
  if (problem_) return *problem_;
  return link_->end().value_or(LinkEnd{});
}

void PhoneSession::onState(LinkState state) {
  switch (state) {
    case LinkState::handshaking: handshakeBegan_ = timers_->now(); break;
    case LinkState::discovering: handshakeTime_ = timers_->now() - handshakeBegan_; break;
    case LinkState::up:
      cancelLimit();
      watch();
      playVideo();
      if (link_->state() != LinkState::up) break;
      playSound();
      car_.open(*link_->services());
      break;
    case LinkState::ended:
      cancelLimit();
      if (watch_) timers_->cancel(*watch_);
      break;
    default: break;
  }
}

void PhoneSession::onMessage(const Message&) { lastHeard_ = timers_->now(); }

void PhoneSession::onViolation(const std::string&) { ++violations_; }

void PhoneSession::playVideo() {
  const Service* sink = findVideoSink(*link_->services());
  if (sink == nullptr) {
    problem_ = {false, Side::headUnit, "offers no service that takes a picture",
                "it must register a video sink"};
    return leave();
  }
  video_ = std::make_unique<MediaStream>(
      link_, timers_, options_.stream,
      videoOpener(sink->media_sink_service(), options_.wish, std::move(makeVideo_),
                  {&car_.touches(), [this](Micros time) { onPictureSent(time); }}),
      [this](const LinkEnd& end) { onVideoDone(end); });
  video_->start(link_->unusedChannel(), sink->id());
}

void PhoneSession::onPictureSent(Micros time) {
  pictureTime_ = time;
  sounds_.onPictureSent(time);
}

void PhoneSession::playSound() { sounds_.start(*link_->services(), options_.sounds, options_.makeSound); }

void PhoneSession::addTrouble(const std::string& what, const LinkEnd& end) {
  if (link_->end()) return;
  troubles_.push_back(what + ": " + end.words());
  if (trouble_) trouble_(troubles_.back());
}

void PhoneSession::onVideoDone(const LinkEnd& end) {
  if (link_->end()) return;
  if (!end.clean) problem_ = end;
  // A file that breaks off is told at once; what the head unit does to the picture, the link's end tells.
  if (!end.clean && end.side == Side::phone) addTrouble("picture", end);
  leave();
}

void PhoneSession::leave() {
  sounds_.stop();
  car_.close();
  link_->sayByeBye();
  // After a problem the user has waited long enough.
  const Micros wait = problem_ ? options_.farewellLimit / 2 : options_.farewellLimit;
  limit_ = timers_->after(wait, [this] {
    link_->finish({true, Side::phone, "said good-bye, but the head unit did not answer it", ""});
  });
}

void PhoneSession::watch() {
  const Micros silence = timers_->now() - lastHeard_;
  if (silence >= options_.silenceLimit) {
    return link_->fail(Side::headUnit, "no longer answers, not even pings", "it may be stuck; restart it");
  }
  if (silence >= watchInterval) link_->sendPing(timers_->now());
  watch_ = timers_->after(std::min(watchInterval, options_.silenceLimit - silence), [this] { watch(); });
}

void PhoneSession::cancelLimit() {
  if (limit_) timers_->cancel(*limit_);
  limit_.reset();
}

}  // namespace phone
