#pragma once

#include <functional>
#include <memory>
#include <string>

#include "headunit/Cluster.h"
#include "headunit/services/Newest.h"
#include "headunit/services/ServiceTotals.h"

namespace headunit {

/// Turns the images of a phone's messages into pictures for the cluster, away from the thread that received
/// them. Images that come again and again, as covers do, are decoded once. Any thread.
class ImageLoader {
 public:
  using Decode = std::function<Image(const std::string&)>;
  using Post = std::function<void(std::function<void()>)>;
  using Show = std::function<void(ClusterView& view, const Image& image)>;

  /// `post` runs what it is given somewhere, sometime, or never; that may be after this object has gone.
  /// `cluster` outlives all that was posted.
  ImageLoader(Post post, Decode decode, Cluster* cluster);

  /// The picture of `bytes` if they have been decoded lately, and null otherwise.
  Image known(const std::string& bytes) const;

  /// Decodes `bytes`, and changes the view by `show` if `ticket` is still the newest then. Nothing happens if
  /// `bytes` are empty or no image, or if far too many wait already.
  void load(const std::string& bytes, const Newest::Ticket& ticket, Show show);

  std::uint64_t decoded() const;

 private:
  struct Shelf;

  const Post post_;
  const std::shared_ptr<Shelf> shelf_;
};

}  // namespace headunit
