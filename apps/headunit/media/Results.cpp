#include "headunit/media/Results.h"

#include <spdlog/spdlog.h>

#include <utility>

namespace headunit {

Results::Results(Paths paths, const Screen* screen, Post post)
    : paths_(std::move(paths)),
      screen_(screen),
      post_(std::move(post)),
      snapshot_(paths_.snapshot.empty() ? nullptr : std::make_shared<Snapshot>(paths_.snapshot)) {}

void Results::afterLink(LinkRecord record) {
  lastLink_ = std::move(record);
  writeStatistics();
  if (!snapshot_) return;
  post_([snapshot = snapshot_, shown = screen_->showsNow(), margins = screen_->margins()] {
    snapshot->write(shown, margins);
  });
}

bool Results::atEnd() {
  const bool told = writeStatistics();
  const bool drawn = !snapshot_ || snapshot_->writeLast(screen_->showsNow(), screen_->margins());
  return told && drawn;
}

bool Results::writeStatistics() const {
  std::string error;
  if (paths_.statistics.empty() || !lastLink_ || writeReport(*lastLink_, paths_.statistics, &error)) {
    return true;
  }
  spdlog::error("{}.", error);
  return false;
}

}  // namespace headunit
