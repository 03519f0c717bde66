#include "headunit/services/ImageLoader.h"

#include <unordered_map>

namespace headunit {
namespace {

// As many as are on the screen at one time, and some.
constexpr std::size_t MOST_KNOWN = 64;
// What is larger comes once, as a rule, and would not leave room for the others.
constexpr std::size_t LARGEST_KNOWN_BYTES = 512 << 10;
// A phone that sends faster than images can be decoded does not fill the memory.
constexpr std::size_t MOST_WAITING_BYTES = 32 << 20;

}  // namespace

struct ImageLoader::Shelf {
  Decode decode;
  Cluster* cluster = nullptr;
  mutable std::mutex mutex;
  std::unordered_map<std::string, Image> known;
  std::size_t waitingBytes = 0;
  std::uint64_t decoded = 0;

  Image find(const std::string& bytes) const {
    const std::lock_guard lock(mutex);
    const auto found = known.find(bytes);
    return found == known.end() ? nullptr : found->second;
  }

  bool admit(std::size_t bytes) {
    const std::lock_guard lock(mutex);
    if (waitingBytes + bytes > MOST_WAITING_BYTES) return false;
    waitingBytes += bytes;
    return true;
  }

  void keep(const std::string& bytes, const Image& image) {
    const std::lock_guard lock(mutex);
    ++decoded;
    if (bytes.size() > LARGEST_KNOWN_BYTES) return;
    if (known.size() >= MOST_KNOWN) known.clear();
    known[bytes] = image;
  }

  void work(const std::string& bytes, const Newest::Ticket& ticket, const Show& show) {
    {
      const std::lock_guard lock(mutex);
      waitingBytes -= bytes.size();
    }
    if (!ticket.isNewest()) return;
    Image image = find(bytes);
    if (!image) {
      image = decode(bytes);
      if (!image) return;
      keep(bytes, image);
    }
    // The newer thing draws its ticket before it changes the view: what is asked within the change counts.
    cluster->change([&](ClusterView& view) {
      if (ticket.isNewest()) show(view, image);
    });
  }
};

ImageLoader::ImageLoader(Post post, Decode decode, Cluster* cluster)
    : post_(std::move(post)), shelf_(std::make_shared<Shelf>()) {
  shelf_->decode = std::move(decode);
  shelf_->cluster = cluster;
}

Image ImageLoader::known(const std::string& bytes) const {
  return bytes.empty() ? nullptr : shelf_->find(bytes);
}

void ImageLoader::load(const std::string& bytes, const Newest::Ticket& ticket, Show show) {
  if (bytes.empty() || !shelf_->admit(bytes.size())) return;
  post_([shelf = shelf_, bytes, ticket, show = std::move(show)] { shelf->work(bytes, ticket, show); });
}

std::uint64_t ImageLoader::decoded() const {
  const std::lock_guard lock(shelf_->mutex);
  return shelf_->decoded;
}

}  // namespace headunit
