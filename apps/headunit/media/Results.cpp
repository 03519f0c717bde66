#include "headunit/media/Results.h"

#include <spdlog/spdlog.h>

#include <utility>

#include "headunit/OutputFile.h"

namespace headunit {
namespace {

constexpr const char* ANOTHER_STATISTICS = "; choose another file with --stats";
constexpr const char* ANOTHER_SNAPSHOT = "; choose another file with --snapshot";

}  // namespace

bool Results::canBeWritten(const Paths& paths, std::string* error) {
  if (!paths.statistics.empty() && !canWriteFile(paths.statistics, error)) {
    *error += ANOTHER_STATISTICS;
  } else if (!paths.snapshot.empty() && !canWriteFile(paths.snapshot, error)) {
    *error += ANOTHER_SNAPSHOT;
  } else {
    return true;
  }
  return false;
}

Results::Results(Paths paths, const Screen* screen, Post post)
    : paths_(std::move(paths)),
      screen_(screen),
      post_(std::move(post)),
      snapshot_(paths_.snapshot.empty() ? nullptr : std::make_shared<Snapshot>(paths_.snapshot)) {}

void Results::afterLink(LinkRecord record) {
  lastLink_ = std::move(record);
  if (isReplacedWhenWritten(paths_.statistics)) writeStatistics();
  if (!snapshot_ || !isReplacedWhenWritten(paths_.snapshot)) return;
  post_([snapshot = snapshot_, shown = screen_->showsNow(), margins = screen_->margins()] {
    snapshot->write(shown, margins);
  });
}

bool Results::atEnd() {
  const bool told = writeStatistics();
  const bool drawn = !snapshot_ || snapshot_->writeLast(screen_->showsNow(), screen_->margins());
  return told && drawn;
}

bool Results::writeStatistics() {
  std::string error;
  if (paths_.statistics.empty() || !lastLink_ || writeReport(*lastLink_, paths_.statistics, &error)) {
    fault_.clear();
    return true;
  }
  if (error != fault_) spdlog::error("{}{}.", error, ANOTHER_STATISTICS);
  fault_ = error;
  return false;
}

}  // namespace headunit
