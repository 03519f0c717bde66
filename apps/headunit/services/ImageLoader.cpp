#include "headunit/services/ImageLoader.h"

#include <deque>
#include <unordered_map>

namespace headunit {
namespace {

// More than the longest page has, so that it is not decoded again as often as it comes.
constexpr std::size_t MOST_KNOWN = 128;
// What is larger comes once, as a rule, and would not leave room for the others.
constexpr std::size_t LARGEST_KNOWN_BYTES = 512 << 10;
// A phone that sends faster than images can be decoded does not fill the memory.
constexpr std::size_t MOST_WAITING_BYTES = 32 << 20;

}  // namespace

struct ImageLoader::Shelf {
  struct Known {
    std::string bytes;
    Image image;
  };

  Decode decode;
  Cluster* cluster = nullptr;
  mutable std::mutex mutex;
  std::unordered_map<std::size_t, Known> known;  ///< by their hash, of which one can be had without the lock
  std::deque<std::size_t> ages;                  ///< the same, the oldest first
  std::size_t waitingBytes = 0;
  std::uint64_t decoded = 0;

  Image find(const std::string& bytes) const {
    if (bytes.size() > LARGEST_KNOWN_BYTES) return nullptr;
    const std::size_t hash = std::hash<std::string>()(bytes);
    const std::lock_guard lock(mutex);
    const auto found = known.find(hash);
    return found == known.end() || found->second.bytes != bytes ? nullptr : found->second.image;
  }

  bool admit(std::size_t bytes) {
    const std::lock_guard lock(mutex);
    if (waitingBytes + bytes > MOST_WAITING_BYTES) return false;
    waitingBytes += bytes;
    return true;
  }

  void count() {
    const std::lock_guard lock(mutex);
    ++decoded;
  }

  void keep(const std::string& bytes, const Image& image) {
    if (bytes.size() > LARGEST_KNOWN_BYTES) return;
    const std::size_t hash = std::hash<std::string>()(bytes);
    const std::lock_guard lock(mutex);
    if (known.count(hash) == 0) ages.push_back(hash);
    known[hash] = {bytes, image};
    if (ages.size() <= MOST_KNOWN) return;
    known.erase(ages.front());
    ages.pop_front();
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
      count();
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
