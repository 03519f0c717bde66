#include "LiveLink.h"

#include <algorithm>
#include <stdexcept>

#include "Pump.h"

namespace test {

void HostJournal::note(const std::string& event) {
  {
    const std::lock_guard<std::mutex> guard(lock);
    notes.push_back(event);
  }
  if (listener) listener(event);
}

std::vector<std::string> HostJournal::events() const {
  const std::lock_guard<std::mutex> guard(lock);
  return notes;
}

bool HostJournal::has(const std::string& event) const {
  const std::vector<std::string> all = events();
  return std::find(all.begin(), all.end(), event) != all.end();
}

class LiveLink::Control : public IControllerCallbacks {
 public:
  explicit Control(LiveLink* owner) : link(owner), journal(owner->journal_) {}

  void serviceDiscoveryRequest(const std::string&, const std::string&, const std::string&,
                               const std::string&) override {
    journal->note("discovery");
  }
  void unrecoverableError() override {
    journal->note("unrecoverable");
    if (link->onUnrecoverable) {
      link->onUnrecoverable();
    } else {
      link->transport_->requestStop();
    }
  }
  void pingRequest(long long timestamp, bool) override { journal->note("ping " + std::to_string(timestamp)); }
  void pingResponse(long long timestamp) override { journal->note("pong " + std::to_string(timestamp)); }
  void navigationFocusRequest(NavFocusType) override { journal->note("navigation focus"); }
  void byeByeRequest(ByeByeReason) override {
    journal->note("bye-bye");
    link->receiver_.controller().sendByeByeResponse();
  }
  void byeByeResponse() override { journal->note("bye-bye answered"); }
  void voiceSessionNotification(VoiceSessionStatus) override { journal->note("voice"); }
  void audioFocusRequest(AudioFocusRequestType) override { journal->note("audio focus"); }
  void authenticationCompleted(int status) override {
    journal->note("authenticated " + std::to_string(status));
  }
  void versionResponse(unsigned long long, unsigned long long) override { journal->note("version"); }

 private:
  LiveLink* const link;
  const std::shared_ptr<HostJournal> journal;
};

class LiveLink::Picture : public IVideoSinkCallbacks {
 public:
  explicit Picture(LiveLink* owner) : link(owner), journal(owner->journal_) {}

  void dataAvailable(int session, unsigned long long, shared_ptr<IoBuffer> const&, void* data,
                     unsigned int length) override {
    {
      const std::lock_guard<std::mutex> guard(lock);
      contents.emplace_back(data, length);
    }
    if (link->onFrame) link->onFrame();
    link->video_->ackFrames(session, 1);
  }
  void codecConfig(void*, unsigned int) override { journal->note("codec config"); }
  int setup(int) override {
    journal->note("setup");
    return 0;
  }
  void playbackStart(int session) override { journal->note("start " + std::to_string(session)); }
  void playbackStop(int session) override { journal->note("stop " + std::to_string(session)); }
  void mediaConfiguration(int index) override { journal->note("configuration " + std::to_string(index)); }
  void videoFocusRequest(int, int) override { journal->note("video focus"); }

  std::vector<Bytes> received() {
    const std::lock_guard<std::mutex> guard(lock);
    return contents;
  }

 private:
  LiveLink* const link;
  const std::shared_ptr<HostJournal> journal;
  std::mutex lock;  // guards contents
  std::vector<Bytes> contents;
};

LiveLink::LiveLink(const Identity& identity, const std::string& root, const Identity& own)
    : journal_(std::make_shared<HostJournal>()) {
  receiver_.init(shared_ptr<IControllerCallbacks>(new Control(this)));
  transport_ = std::make_unique<MemoryTransport>(&receiver_);
  picture_ = new Picture(this);
  video_ = std::make_unique<VideoSink>(VIDEO_SERVICE, receiver_.messageRouter(),
                                       shared_ptr<IVideoSinkCallbacks>(picture_));
  video_->addSupportedConfiguration(VIDEO_800x480, 30, 0, 0, 160);
  video_->setMaxUnacked(4);
  receiver_.registerService(video_.get());
  if (!receiver_.controller().setClientCreds(root, own.certificate, own.key)) {
    throw std::runtime_error("the head unit refused its credentials");
  }
  phone::LinkOptions options;
  options.credentials = {credentials().root, identity.certificate, identity.key};
  phone_ = std::make_unique<phone::PhoneLink>(options);
}

LiveLink::~LiveLink() { stop(); }

void LiveLink::start() {
  started_ = true;
  transport_->start();
  receiver_.start();
}

void LiveLink::stop() {
  if (finished_) return;
  transport_->requestStop();
  joins();
}

void LiveLink::joins() {
  if (started_) transport_->waitForExit();
  receiver_.shutdown();
  finished_ = true;
}

bool LiveLink::pumpUntil(const std::function<bool()>& done) {
  return pump(phone_.get(), transport_.get(), done);
}

bool LiveLink::comesUp() {
  return pumpUntil([this] { return phone_->state() == phone::LinkState::up; });
}

bool LiveLink::opensVideo() {
  phone_->openChannel(VIDEO_CHANNEL, VIDEO_SERVICE);
  const bool open =
      pumpUntil([this] { return phone_->channelState(VIDEO_CHANNEL) == phone::ChannelState::open; });
  if (!open) return false;
  Setup setup;
  setup.set_type(MEDIA_CODEC_VIDEO);
  phone_->send(VIDEO_CHANNEL, MESSAGE_SETUP, setup);
  if (!pumpUntil([this] { return !phone_->received(VIDEO_CHANNEL, MESSAGE_CONFIG).empty(); })) return false;
  Start start;
  start.set_session_id(SESSION);
  start.set_configuration_index(0);
  phone_->send(VIDEO_CHANNEL, MESSAGE_START, start);
  return true;
}

bool LiveLink::sendsFrame(const Bytes& content) {
  const std::size_t before = acknowledged();
  phone_->send(VIDEO_CHANNEL, MESSAGE_MEDIA_DATA, Bytes(filled(8, 0)) + content);
  return pumpUntil([&] { return acknowledged() > before; });
}

std::size_t LiveLink::acknowledged() const { return phone_->received(VIDEO_CHANNEL, MESSAGE_ACK).size(); }

std::vector<Bytes> LiveLink::delivered() const { return picture_->received(); }

}  // namespace test
