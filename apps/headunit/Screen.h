#pragma once

#include <mutex>
#include <optional>

#include "headunit/Cluster.h"
#include "headunit/Picture.h"

namespace headunit {

/// Where pictures go: a window, or nothing at all. One for the whole run of the program.
class Screen {
 public:
  /// `cluster`: what stands beside the pictures. `margins`: what is not shown of each.
  Screen(const Cluster* cluster, Size margins) : cluster_(cluster), margins_(margins) {}
  virtual ~Screen() = default;

  /// Main thread: shows what comes through the slot until the slot is closed, and then what is still in it.
  virtual void run() = 0;

  /// Any thread: how the screen is shared out now.
  ScreenLayout layout() const { return layoutWith(lastShown()); }

  /// Any thread: the last picture shown.
  std::optional<Picture> lastShown() const {
    const std::lock_guard lock(mutex_);
    return last_;
  }

  struct Shown {
    std::optional<Picture> picture;
    ClusterView cluster;
    ScreenLayout layout = {};
  };
  /// Any thread: what can be seen now, and where.
  Shown showsNow() const;

  Size margins() const { return margins_; }

 protected:
  /// The picture can be seen from now on.
  void nowShows(Picture picture);

  /// Any thread: how the screen is shared out while it shows this picture.
  virtual ScreenLayout layoutWith(const std::optional<Picture>& picture) const = 0;

  const Cluster* cluster() const { return cluster_; }

 private:
  const Cluster* const cluster_;
  const Size margins_;
  mutable std::mutex mutex_;
  std::optional<Picture> last_;
};

/// How a screen is shared out that is made for its picture, or, before there is one, for a small one.
ScreenLayout layoutFor(const std::optional<Picture>& picture, Size margins);

/// A screen that nobody sees.
class HeadlessScreen : public Screen {
 public:
  HeadlessScreen(PictureSlot* slot, const Cluster* cluster, Size margins)
      : Screen(cluster, margins), slot_(slot) {}
  void run() override;

 private:
  ScreenLayout layoutWith(const std::optional<Picture>& picture) const override {
    return layoutFor(picture, margins());
  }

  PictureSlot* const slot_;
};

}  // namespace headunit
