#pragma once

#include <VantryReceiver.h>
#include <VideoSink.h>

#include <memory>
#include <string>

#include "headunit/Credentials.h"
#include "headunit/LinkJournal.h"
#include "headunit/LinkStats.h"
#include "headunit/LinkWatch.h"
#include "headunit/RecentLines.h"
#include "headunit/TcpTransport.h"
#include "headunit/VideoPipeline.h"

namespace headunit {

/// What every link of the program shares. All of it outlives them.
struct Equipment {
  Credentials credentials;
  std::function<std::unique_ptr<VideoDecoder>()> makeDecoder;
  PictureSlot* slot = nullptr;
  FrameBudget* budget = nullptr;
  RecentLines* libraryLines = nullptr;
};

/// One phone: the receiver, its endpoints and their callbacks, the transport and the way of the video. It is
/// used for one connection and no second one. All operations are its owner's, on a thread that is none of the
/// link's.
class Link {
 public:
  /// `wake` is raised whenever `view` has changed.
  Link(const Equipment& equipment, FileDescriptor socket, WakeEvent* wake);
  /// Stops the link if need be.
  ~Link();

  /// Returns false, with the reason in `*error`, if the link cannot begin.
  bool start(std::string* error);

  LinkView view() const;
  const std::shared_ptr<LinkStats>& stats() const { return stats_; }
  std::uint64_t bytesRead() const { return transport_.bytesRead(); }
  std::uint64_t bytesWritten() const { return transport_.bytesWritten(); }

  void ping();
  void sayBye();

  /// Ends the threads and decodes what has come. May be called again.
  void stop();

 private:
  void describe();
  void offerVideo();

  const Equipment& equipment_;
  LinkJournal journal_;
  std::shared_ptr<LinkStats> stats_;
  VantryReceiver receiver_;
  TcpTransport transport_;
  std::unique_ptr<VideoPipeline> video_;
  std::unique_ptr<VideoSink> videoSink_;
  bool running_ = false;
  bool finished_ = false;
};

}  // namespace headunit
