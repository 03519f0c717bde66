#include "NumberedMedia.h"

#include <algorithm>
#include <chrono>

#include "ServiceIds.h"

namespace test {

// ---- NumberedPlayer ----

void NumberedPlayer::plays(MediaSinkBase* sink, unsigned int most) {
  limit = most;
  thread = std::thread([this, sink] { play(sink); });
}

void NumberedPlayer::ends() {
  {
    const std::lock_guard<std::mutex> guard(lock);
    over = true;
  }
  changed.notify_all();
  if (thread.joinable()) thread.join();
}

bool NumberedPlayer::overrun() const {
  const std::lock_guard<std::mutex> guard(lock);
  return tooMany;
}

void NumberedPlayer::dataAvailable(int newSession, unsigned long long timestamp,
                                   shared_ptr<IoBuffer> const& buffer, void* data, unsigned int length) {
  const std::lock_guard<std::mutex> guard(lock);
  waiting.push_back({timestamp, buffer, data, length});
  session = newSession;
  if (++unacknowledged > limit) tooMany = true;
  changed.notify_all();
}

bool NumberedPlayer::waitsForUnits(std::vector<Unit>* units) {
  std::unique_lock<std::mutex> guard(lock);
  changed.wait(guard, [this] { return !waiting.empty() || over; });
  units->swap(waiting);
  return !over;
}

void NumberedPlayer::play(MediaSinkBase* sink) {
  for (std::vector<Unit> units; waitsForUnits(&units); units.clear()) {
    for (const Unit& unit : units) {
      const std::uint64_t due = arrivals.due();
      arrivals.takes(unit.timestamp == due && Bytes(unit.content, unit.length) == numberedContent(due));
    }
    int acknowledgedSession = 0;
    {
      const std::lock_guard<std::mutex> guard(lock);
      unacknowledged -= static_cast<unsigned int>(units.size());
      acknowledgedSession = session;
    }
    sink->ackFrames(acknowledgedSession, static_cast<unsigned int>(units.size()));
  }
}

// ---- NumberedMicrophone ----

bool NumberedMicrophone::speaks(AudioSource* source, std::uint64_t end) {
  constexpr std::chrono::minutes LONG_ENOUGH(1);
  std::unique_lock<std::mutex> guard(lock);
  for (; sent < end; ++sent) {
    if (!changed.wait_for(guard, LONG_ENOUGH, [this] { return sent - acknowledgedCount < limit; }))
      return false;
    const Bytes content = numberedContent(sent);
    const shared_ptr<IoBuffer> buffer(new IoBuffer(static_cast<unsigned int>(content.size())));
    std::copy(content.begin(), content.end(), buffer->content());
    source->send(sent, buffer);
  }
  return true;
}

std::uint64_t NumberedMicrophone::acknowledged() const {
  const std::lock_guard<std::mutex> guard(lock);
  return acknowledgedCount;
}

bool NumberedMicrophone::miscounted() const {
  const std::lock_guard<std::mutex> guard(lock);
  return wrongAck;
}

void NumberedMicrophone::ackReceived(int session, unsigned int ack) {
  const std::lock_guard<std::mutex> guard(lock);
  acknowledgedCount += ack;
  if (session != SESSION || acknowledgedCount > sent) wrongAck = true;
  changed.notify_all();
}

int NumberedMicrophone::microphoneRequest(bool open, bool, bool, int maxUnacked) {
  const std::lock_guard<std::mutex> guard(lock);
  limit = open ? static_cast<std::uint64_t>(maxUnacked) : 0;
  changed.notify_all();
  return SESSION;
}

// ---- NumberedStream ----

class NumberedStream::Feed : public phone::MediaFeed {
 public:
  explicit Feed(std::shared_ptr<Progress> shared) : progress(std::move(shared)) {}
  phone::Bytes codecConfig() override { return {}; }
  Pull next(phone::MediaUnit* unit) override {
    if (progress->next == progress->end) return Pull::later;
    unit->timestamp = static_cast<phone::Micros>(progress->next);
    unit->data = numberedContent(progress->next++);
    return Pull::unit;
  }

 private:
  const std::shared_ptr<Progress> progress;
};

namespace {

phone::StreamOptions optionsFor(int serviceId) {
  phone::StreamOptions options;
  options.codec = serviceId == VIDEO ? MEDIA_CODEC_VIDEO : MEDIA_CODEC_1;
  options.sessionId = serviceId;
  options.paced = false;
  return options;
}

}  // namespace

NumberedStream::NumberedStream(phone::PhoneLink* link, phone::Timers* timers, int serviceId)
    : stream(link, timers, optionsFor(serviceId),
             [shared = progress](const std::vector<std::uint32_t>&, std::uint32_t* index, phone::LinkEnd*) {
               *index = 0;
               return std::make_unique<Feed>(shared);
             }) {
  stream.start(link->unusedChannel(), serviceId);
}

void NumberedStream::goesOnTo(std::uint64_t end) {
  progress->end = end;
  stream.resume();
}

}  // namespace test
