#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <string>

#include "headunit/Link.h"
#include "headunit/Options.h"
#include "headunit/Progress.h"
#include "headunit/Report.h"

namespace headunit {

/// Waits for phones and sees each of them through, one after another, until it is asked to quit.
class Server {
 public:
  /// `signals`: a signalfd, or any descriptor that becomes readable when the program is to end.
  Server(const Options& options, const Equipment& equipment, int signals);

  /// Called with what is known of each link after it, on run's thread.
  void afterLink(std::function<void(LinkRecord)> call) { afterLink_ = std::move(call); }

  /// Returns the program's exit status.
  int run();

  /// Any thread: says good-bye to the phone and ends run.
  void quit();

 private:
  bool listen();
  FileDescriptor nextPhone();
  FileDescriptor acceptPhone();
  FileDescriptor connectToPhone();
  void serve(FileDescriptor socket);
  LinkEnd watchOver(Link* link);
  void leaveIfWanted(Link* link, LinkWatch* watch);
  void settle(LinkRecord record);
  bool isDone() const { return quitting_ || equipment_.budget->exhausted(); }
  void waitUntil(std::optional<TimePoint> deadline, int descriptor = -1);

  const Options& options_;
  const Equipment& equipment_;
  const int signals_;
  std::function<void(LinkRecord)> afterLink_ = [](LinkRecord) {};
  WakeEvent wake_;
  std::atomic<bool> quitting_{false};
  Progress progress_;
  FileDescriptor listener_;
  bool everConnected_ = false;
  int status_ = 0;
};

}  // namespace headunit
