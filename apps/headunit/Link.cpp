#include "headunit/Link.h"

#include "headunit/ControlCallbacks.h"
#include "headunit/VideoCallbacks.h"
#include "headunit/services/ServiceIds.h"

namespace headunit {
namespace {

// Enough for the next frames to be on their way while one is decoded, and little enough to stay current.
constexpr int MAX_UNACKED_FRAMES = 4;
constexpr int DENSITY = 160;

}  // namespace

Link::Link(const Equipment& equipment, FileDescriptor socket, WakeEvent* wake)
    : equipment_(equipment),
      journal_(wake),
      stats_(std::make_shared<LinkStats>(Clock::now())),
      transport_(&receiver_, std::move(socket),
                 [this] { journal_.note([](LinkNews& news) { news.stopped = true; }); }) {
  VideoPipeline::Ends ends;
  ends.acknowledge = [this](int session, unsigned int count) { videoSink_->ackFrames(session, count); };
  ends.changed = [wake] { wake->raise(); };
  ends.slot = equipment.slot;
  ends.budget = equipment.budget;
  ends.stats = stats_;
  video_ = std::make_unique<VideoPipeline>(equipment.makeDecoder(), ends);
}

Link::~Link() { stop(); }

std::optional<LinkEnd> Link::start() {
  receiver_.init(::shared_ptr<IControllerCallbacks>(
      new ControlCallbacks(&receiver_.controller(), &journal_, stats_.get())));
  offerVideo();
  offerSound();
  offerMicrophone();
  offerInput();
  offerSensors();
  offerCluster();
  offerVerification();
  describe();
  const Credentials& own = equipment_.credentials;
  if (!receiver_.controller().setClientCreds(own.root, own.certificate, own.key)) {
    const std::vector<std::string> lines = equipment_.libraryLines->all();
    return LinkEnd{
        false, "head unit",
        "the credentials cannot be used: " + (lines.empty() ? "OpenSSL refuses them" : lines.back()),
        "check the files that --credentials names"};
  }
  running_ = transport_.start();
  if (!running_) return LinkEnd{false, "head unit", "no thread can be started", "close other programs"};
  receiver_.start();
  players_.start();
  return {};
}

void Link::offerVideo() {
  auto* const callbacks = new VideoCallbacks(video_.get(), &transport_);
  videoSink_ = std::make_unique<VideoSink>(VIDEO, receiver_.messageRouter(),
                                           ::shared_ptr<IVideoSinkCallbacks>(callbacks));
  callbacks->answerThrough(videoSink_.get());
  videoSink_->setMaxUnacked(MAX_UNACKED_FRAMES);
  videoSink_->setGrantFocusOnSetup(true);
  const Size margins = equipment_.margins;
  for (const int resolution : {VIDEO_800x480, VIDEO_1280x720, VIDEO_1920x1080}) {
    for (const int rate : {30, 60}) {
      videoSink_->addSupportedConfiguration(resolution, rate, margins.width, margins.height, DENSITY);
    }
  }
  offer(videoSink_.get());
}

void Link::offerSound() {
  const auto add = [this](int id, AudioStreamType type, AudioFormat format, const char* name) {
    sounds_.push_back(
        std::make_unique<SoundService>(id, type, format, name, receiver_.messageRouter(), equipment_.mixer));
    offer(sounds_.back()->endpoint());
  };
  add(MEDIA_SOUND, AUDIO_STREAM_MEDIA, AudioFormat::stereo48k, "media");
  add(GUIDANCE, AUDIO_STREAM_GUIDANCE, AudioFormat::mono16k, "guidance");
  add(SYSTEM_SOUND, AUDIO_STREAM_SYSTEM_AUDIO, AudioFormat::mono16k, "system");
  add(TELEPHONY, AUDIO_STREAM_TELEPHONY, AudioFormat::mono16k, "telephony");
}

void Link::offerMicrophone() {
  microphone_ = std::make_unique<MicrophoneFeed>(
      equipment_.microphone, [this](unsigned long long timestamp, ::shared_ptr<IoBuffer> const& buffer) {
        audioSource_->send(timestamp, buffer);
      });
  if (equipment_.microphone == nullptr) return;
  audioSource_ = std::make_unique<AudioSource>(
      MICROPHONE, receiver_.messageRouter(),
      ::shared_ptr<IAudioSourceCallbacks>(new MicrophoneCallbacks(microphone_.get())));
  audioSource_->setConfig(static_cast<int>(MICROPHONE_RATE), 16, 1);
  offer(audioSource_.get());
}

void Link::offerInput() {
  input_ = std::make_unique<InputSource>(INPUT, receiver_.messageRouter());
  input_->setTouchScreenPresent(true);
  input_->setTouchScreenWidth(TOUCH_SCREEN.width);
  input_->setTouchScreenHeight(TOUCH_SCREEN.height);
  input_->setSupportedKeycodes(equipment_.keyCodes);
  offer(input_.get());
  equipment_.controls->attach(input_.get(), &controlTotals_, stats_.get());
  if (!equipment_.touches) return;
  touches_ = std::make_unique<TouchPlayer>(*equipment_.touches, equipment_.controls, [this] {
    const VideoTotals totals = stats_->totals();
    return Size{totals.width, totals.height};
  });
  players_.add(touches_.get());
}

void Link::offerSensors() {
  sensors_ = std::make_unique<SensorSource>(SENSORS, receiver_.messageRouter());
  for (const int type : equipment_.drive->sensors) sensors_->registerSensor(type);
  offer(sensors_.get());
  drive_ = std::make_unique<DrivePlayer>(equipment_.drive, sensors_.get());
  players_.add(drive_.get());
}

void Link::offerCluster() {
  cluster_ = std::make_unique<ClusterServices>(equipment_, receiver_.messageRouter());
  for (ProtocolEndpointBase* const endpoint : cluster_->endpoints()) offer(endpoint);
  players_.add(cluster_->tuner());
  cluster_->begin(stats_.get());
}

void Link::offerVerification() {
  if (equipment_.camera == nullptr) return;
  verification_ = std::make_unique<VerificationService>(
      VERIFICATION, receiver_.messageRouter(),
      VerificationHarness::Car{sensors_.get(), input_.get(), videoSink_.get(), &receiver_.controller(),
                               equipment_.slowWork, equipment_.camera});
  offer(verification_.get());
}

void Link::describe() {
  Controller& controller = receiver_.controller();
  controller.setMake("Vantry");
  controller.setModel("Example");
  controller.setYear("2024");
  controller.setVehicleId("VANTRY-EXAMPLE-0001");
  controller.setHeadUnitMake("Vantry");
  controller.setHeadUnitModel("vantry-headunit");
  controller.setHeadUnitSoftwareBuild("1");
  controller.setHeadUnitSoftwareVersion("1.0.0");
  controller.setDriverPosition(DRIVER_POSITION_0);
}

LinkView Link::view() const {
  return {journal_.news(),
          transport_.lastReadAt(),
          transport_.bytesRead() > 0,
          transport_.bytesWritten(),
          transport_.brokenBy(),
          video_->failingFor(),
          equipment_.libraryLines->all()};
}

void Link::ping() {
  const auto now = std::chrono::duration_cast<microseconds>(Clock::now().time_since_epoch());
  receiver_.controller().sendPingRequest(now.count(), false);
}

void Link::sayBye() {
  cluster_->leave();
  receiver_.controller().sendByeByeRequest(BYE_BYE_REASON_1);
}

// First whatever sends on its own, then the transport, and last what still needs the receiver to acknowledge.
void Link::stop() {
  if (finished_) return;
  finished_ = true;
  duration_ = between(stats_->started(), Clock::now());
  players_.stop();
  equipment_.controls->detach();
  if (cluster_) cluster_->end();
  if (verification_) verification_->release();
  if (microphone_) microphone_->close();
  transport_.requestStop();
  if (running_) transport_.waitForExit();
  if (microphone_) microphone_->close();  // the phone may have asked for it again till then
  // A phone that has said good-bye has sent all that it wanted to show; in any other case nobody waits for
  // it.
  if (journal_.news().phoneSaidBye) {
    video_->finish();
  } else {
    video_->abandon();
  }
  if (cluster_) cluster_->gone();
  for (const auto& sound : sounds_) sound->detach();
  receiver_.shutdown();
}

LinkRecord Link::record(LinkEnd end) const {
  LinkRecord record;
  record.stats = stats_;
  record.end = std::move(end);
  record.bytesRead = transport_.bytesRead();
  record.bytesWritten = transport_.bytesWritten();
  record.duration = duration_;
  for (const auto& sound : sounds_) record.sounds.emplace_back(sound->name(), sound->totals());
  if (microphone_) record.microphone = microphone_->totals();
  record.controls = controlTotals_;
  if (drive_) record.sensorReports = drive_->reports();
  if (cluster_) record.services = cluster_->totals();
  return record;
}

}  // namespace headunit
