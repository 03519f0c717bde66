#pragma once

#include <AudioSource.h>
#include <InputSource.h>
#include <SensorSource.h>
#include <VantryReceiver.h>
#include <VideoSink.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "headunit/Equipment.h"
#include "headunit/LinkJournal.h"
#include "headunit/LinkStats.h"
#include "headunit/LinkWatch.h"
#include "headunit/MicrophoneFeed.h"
#include "headunit/PacedThread.h"
#include "headunit/Report.h"
#include "headunit/SoundService.h"
#include "headunit/TcpTransport.h"
#include "headunit/services/ClusterServices.h"
#include "headunit/services/VerificationService.h"

namespace headunit {

/// One phone: the receiver, its endpoints and their callbacks, the transport and the ways of picture, sound,
/// touches and vehicle data. It is used for one connection and no second one. All operations are its owner's,
/// on a thread that is none of the link's.
class Link {
 public:
  /// `wake` is raised whenever `view` has changed.
  Link(const Equipment& equipment, FileDescriptor socket, WakeEvent* wake);
  /// Stops the link if need be.
  ~Link();

  /// Returns the link's end, with the reason, if it cannot begin.
  std::optional<LinkEnd> start();

  LinkView view() const;
  const LinkStats& stats() const { return *stats_; }

  void ping();
  void sayBye();

  /// Ends the threads, decodes what a phone that has said good-bye left, and sums up. May be called again.
  void stop();
  /// After stop.
  LinkRecord record(LinkEnd end) const;

 private:
  void describe();
  void offer(ProtocolEndpointBase* endpoint) { receiver_.registerService(endpoint); }
  void offerVideo();
  void offerSound();
  void offerMicrophone();
  void offerInput();
  void offerSensors();
  void offerCluster();
  void offerVerification();

  const Equipment& equipment_;
  LinkJournal journal_;
  std::shared_ptr<LinkStats> stats_;
  VantryReceiver receiver_;
  TcpTransport transport_;
  std::unique_ptr<VideoPipeline> video_;
  std::unique_ptr<VideoSink> videoSink_;
  std::vector<std::unique_ptr<SoundService>> sounds_;
  std::unique_ptr<AudioSource> audioSource_;
  std::unique_ptr<MicrophoneFeed> microphone_;
  std::unique_ptr<InputSource> input_;
  ControlTotals controlTotals_;
  std::unique_ptr<SensorSource> sensors_;
  std::unique_ptr<DrivePlayer> drive_;
  std::unique_ptr<TouchPlayer> touches_;
  std::unique_ptr<ClusterServices> cluster_;
  std::unique_ptr<VerificationService> verification_;
  PacedThread players_;
  microseconds duration_{0};
  bool running_ = false;
  bool finished_ = false;
};

}  // namespace headunit
