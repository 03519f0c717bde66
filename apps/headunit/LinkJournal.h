#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "headunit/FileDescriptor.h"

namespace headunit {

/// What has happened on a link so far, apart from media.
struct LinkNews {
  bool versionAccepted = false;
  std::optional<int> authentication;  ///< the handshake has ended, with this status
  bool beyondRepair = false;          ///< IControllerCallbacks::unrecoverableError
  bool phoneSaidBye = false;          ///< and has been answered
  bool phoneAnsweredBye = false;
  bool stopped = false;  ///< no bytes are transferred any more
};

/// Where the threads of a link note its news for the one that watches over it.
class LinkJournal {
 public:
  /// `wake` is raised with each entry.
  explicit LinkJournal(WakeEvent* wake) : wake_(wake) {}

  void note(const std::function<void(LinkNews&)>& entry) {
    {
      const std::lock_guard lock(mutex_);
      entry(news_);
    }
    wake_->raise();
  }

  LinkNews news() const {
    const std::lock_guard lock(mutex_);
    return news_;
  }

 private:
  WakeEvent* const wake_;
  mutable std::mutex mutex_;
  LinkNews news_;
};

}  // namespace headunit
