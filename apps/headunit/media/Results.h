#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "headunit/Report.h"
#include "headunit/media/Snapshot.h"

namespace headunit {

/// The files that tell what a run of the program has brought: the statistics of its last link, and what the
/// screen has shown. They are written after each link, for somebody who looks meanwhile, and once more at the
/// end, because pictures of a link may still be shown when it is over; what goes into a pipe, only then.
class Results {
 public:
  using Post = std::function<void(std::function<void()>)>;

  /// Which of the files are wanted; empty: that one is not.
  struct Paths {
    std::string statistics;
    std::string snapshot;
  };

  /// Before the first link, so that nobody drives for nothing: whether the files that are wanted can be
  /// written, as far as can be told without touching them. Otherwise `*error` says what is wrong and what to
  /// do.
  static bool canBeWritten(const Paths& paths, std::string* error);

  /// `screen` outlives this object. `post` runs what takes its time somewhere else; what it runs late, or
  /// after this object has gone, does no harm.
  Results(Paths paths, const Screen* screen, Post post);

  /// Not during `atEnd`.
  void afterLink(LinkRecord record);

  /// After the last link. False if a file cannot be written; like all such failures, that has been logged,
  /// but not once for each link.
  bool atEnd();

 private:
  bool writeStatistics();

  const Paths paths_;
  const Screen* const screen_;
  const Post post_;
  const std::shared_ptr<Snapshot> snapshot_;  // null: none is wanted; shared with what was posted
  std::optional<LinkRecord> lastLink_;
  std::string fault_;  // of the statistics file, as it has been told
};

}  // namespace headunit
