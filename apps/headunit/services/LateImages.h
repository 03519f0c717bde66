#pragma once

#include <string>
#include <vector>

#include "headunit/services/ImageLoader.h"

namespace headunit {

/// The images of one thing that a phone tells of: what of them has been decoded lately is shown together with
/// the thing, and the rest follows.
///
///     LateImages images(loader);
///     turn.image = images.take(bytes, show);
///     const Newest::Ticket ticket = newestTurn.next();
///     ...the view is changed...
///     images.follow(ticket);
///
/// One thread; what it leaves to the loader may outlive it.
class LateImages {
 public:
  explicit LateImages(ImageLoader* loader) : loader_(loader) {}

  /// The picture of `bytes`. Null if it is not known, or if `bytes` are empty; then `show` puts it into the
  /// view once it is. `bytes` must stay until `follow`.
  Image take(const std::string& bytes, ImageLoader::Show show);

  /// Once the thing itself is in the view, whose `ticket` this is: has all decoded that was not known.
  /// Without this call nothing follows.
  void follow(const Newest::Ticket& ticket);

 private:
  struct Late {
    const std::string* bytes;
    ImageLoader::Show show;
  };

  ImageLoader* const loader_;
  std::vector<Late> late_;
};

}  // namespace headunit
