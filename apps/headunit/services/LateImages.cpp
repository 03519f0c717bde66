#include "headunit/services/LateImages.h"

#include <utility>

namespace headunit {

Image LateImages::take(const std::string& bytes, ImageLoader::Show show) {
  Image known = loader_->known(bytes);
  if (!known && !bytes.empty()) late_.push_back({&bytes, std::move(show)});
  return known;
}

void LateImages::follow(const Newest::Ticket& ticket) {
  for (Late& late : std::exchange(late_, {})) loader_->load(*late.bytes, ticket, std::move(late.show));
}

}  // namespace headunit
