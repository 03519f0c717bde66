#include "headunit/Link.h"

#include "headunit/ControlCallbacks.h"
#include "headunit/VideoCallbacks.h"

namespace headunit {
namespace {

constexpr int VIDEO_SERVICE = 1;
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

bool Link::start(std::string* error) {
  receiver_.init(::shared_ptr<IControllerCallbacks>(
      new ControlCallbacks(&receiver_.controller(), &journal_, stats_.get())));
  offerVideo();
  describe();
  const Credentials& own = equipment_.credentials;
  if (!receiver_.controller().setClientCreds(own.root, own.certificate, own.key)) {
    const std::vector<std::string> lines = equipment_.libraryLines->all();
    *error = "the credentials cannot be used: " + (lines.empty() ? "OpenSSL refuses them" : lines.back());
    return false;
  }
  running_ = transport_.start();
  receiver_.start();
  return running_;
}

void Link::offerVideo() {
  auto* const callbacks = new VideoCallbacks(video_.get(), &transport_);
  videoSink_ = std::make_unique<VideoSink>(VIDEO_SERVICE, receiver_.messageRouter(),
                                           ::shared_ptr<IVideoSinkCallbacks>(callbacks));
  callbacks->answerThrough(videoSink_.get());
  videoSink_->setMaxUnacked(MAX_UNACKED_FRAMES);
  videoSink_->setGrantFocusOnSetup(true);
  for (const int resolution : {VIDEO_800x480, VIDEO_1280x720, VIDEO_1920x1080}) {
    for (const int rate : {30, 60}) videoSink_->addSupportedConfiguration(resolution, rate, 0, 0, DENSITY);
  }
  receiver_.registerService(videoSink_.get());
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
  return {journal_.news(),       transport_.lastReadAt(), transport_.bytesRead() > 0,
          transport_.brokenBy(), video_->failingSince(),  equipment_.libraryLines->all()};
}

void Link::ping() {
  const auto now = std::chrono::duration_cast<microseconds>(Clock::now().time_since_epoch());
  receiver_.controller().sendPingRequest(now.count(), false);
}

void Link::sayBye() { receiver_.controller().sendByeByeRequest(BYE_BYE_REASON_1); }

void Link::stop() {
  if (finished_) return;
  finished_ = true;
  transport_.requestStop();
  if (running_) transport_.waitForExit();
  video_->finish();  // its last acknowledgements still need the receiver
  receiver_.shutdown();
}

}  // namespace headunit
