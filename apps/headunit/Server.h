#pragma once

#include <functional>
#include <memory>

#include "headunit/Link.h"
#include "headunit/Options.h"
#include "headunit/Patience.h"
#include "headunit/PhoneSource.h"
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
  void quit() { patience_.end(); }

 private:
  FileDescriptor nextPhone();
  void serve(FileDescriptor socket);
  LinkEnd watchOver(Link* link);
  void leaveIfWanted(Link* link, LinkWatch* watch);
  void settle(LinkRecord record);
  bool isDone() const { return patience_.isOver() || equipment_.budget->exhausted(); }

  const Options& options_;
  const Equipment& equipment_;
  std::function<void(LinkRecord)> afterLink_ = [](LinkRecord) {};
  Patience patience_;
  std::unique_ptr<PhoneSource> phones_;
  Progress progress_;
  int status_ = 0;
};

}  // namespace headunit
