#include "headunit/services/BrowserService.h"

#include <algorithm>
#include <memory>

#include "headunit/Shortened.h"

namespace headunit {
namespace {

// Of a phone that sends more in one page, the rest comes with the next.
constexpr std::size_t MOST_ENTRIES = 100;
// Paths are kept as they are, since they go back to the phone; what has a longer one is left out.
constexpr std::size_t LONGEST_PATH = 4096;

std::string joined(const std::string& first, const std::string& second) {
  return first + (first.empty() || second.empty() ? "" : " \u00b7 ") + second;
}

const char* wordFor(int listType) {
  switch (listType) {
    case MediaList_Type_PLAYLIST: return "Playlist";
    case MediaList_Type_ALBUM: return "Album";
    case MediaList_Type_ARTIST: return "Artist";
    case MediaList_Type_STATION: return "Station";
    case MediaList_Type_GENRE: return "Genre";
    default: return "";
  }
}

unsigned int sizeOf(const BrowserView& page) { return static_cast<unsigned int>(page.entries.size()); }

}  // namespace

// ---- What the user does ----

void BrowserService::opened() {
  context_.tally->count(&ServiceTotals::browserOpened);
  std::optional<Request> request;
  context_.cluster->change([&](ClusterView& view) {
    view.browser = {};
    view.browser.open = opensItself_;
    trail_.clear();
    request = begin(view, {});
  });
  send(request);
}

void BrowserService::closed() {
  newestPage_.next();
  context_.cluster->change([this](ClusterView& view) {
    view.browser = {};
    awaited_.reset();
    trail_.clear();
  });
}

void BrowserService::toggle() {
  if (!endpoint_->isChannelOpen()) return;
  std::optional<Request> request;
  context_.cluster->change([&](ClusterView& view) {
    view.browser.open = !view.browser.open;
    if (view.browser.open) request = awaited_;
  });
  send(request);
}

std::optional<BrowserService::Request> BrowserService::begin(ClusterView& view, Request request) {
  view.browser.loading = true;
  awaited_ = std::move(request);
  return awaited_;
}

// Never within a change: the phone's thread may be waiting there.
void BrowserService::send(const std::optional<Request>& request) {
  if (request) endpoint_->mediaGetNode(request->path, request->start, true);
}

void BrowserService::move(int by) {
  std::optional<Request> request;
  context_.cluster->change([&](ClusterView& view) {
    BrowserView& page = view.browser;
    const unsigned int size = sizeOf(page);
    if (by < 0 ? page.selected > 0 : page.selected + 1 < size) {
      page.selected = by < 0 ? page.selected - 1 : page.selected + 1;
    } else if (page.loading) {
      return;
    } else if (by > 0 && page.start + size < page.total) {
      request = begin(view, {page.path, page.start + size, page.start + size});
    } else if (by < 0 && page.start > 0) {
      request =
          begin(view, {page.path, page.start - std::min(page.start, std::max(size, 1U)), page.start - 1});
    }
  });
  send(request);
}

void BrowserService::turn(int pages) {
  std::optional<Request> request;
  context_.cluster->change([&](ClusterView& view) {
    const BrowserView& page = view.browser;
    const unsigned int size = sizeOf(page);
    const bool possible = pages < 0 ? page.start > 0 : page.start + size < page.total;
    if (page.loading || !possible) return;
    const unsigned int start =
        pages < 0 ? page.start - std::min(page.start, std::max(size, 1U)) : page.start + size;
    request = begin(view, {page.path, start, start});
  });
  send(request);
}

void BrowserService::enter() {
  std::optional<Request> request;
  std::string song;
  context_.cluster->change([&](ClusterView& view) {
    const BrowserView& page = view.browser;
    if (page.loading || page.selected >= page.entries.size()) return;
    const std::string path = page.entries[page.selected].path;
    if (level_ == Level::list) {
      song = path;
    } else {
      trail_.push_back({page.path, page.start, page.start + page.selected});
      request = begin(view, {path, 0, 0});
    }
  });
  send(request);
  if (song.empty()) return;
  context_.tally->count(&ServiceTotals::browserActions);
  endpoint_->reportAction(song, InstrumentClusterInput_InstrumentClusterAction_ENTER);
  endpoint_->mediaGetNode(song, 0, true);  // its picture, which no list tells
}

void BrowserService::back() {
  std::optional<Request> request;
  context_.cluster->change([&](ClusterView& view) {
    if (trail_.empty()) {
      view.browser.open = false;
      return;
    }
    request = begin(view, std::move(trail_.back()));
    trail_.pop_back();
  });
  send(request);
}

// ---- What the phone answers ----

// Start and total come unchecked from the phone.
BrowserService::Page::Page(Level pageLevel, const std::string& pagePath, const std::string& pageTitle,
                           int first, int all) {
  level = pageLevel;
  // Only a root can be shown that is not found by its path, and the empty path stands for it as well.
  if (pageLevel != Level::root || pagePath.size() <= LONGEST_PATH) view.path = pagePath;
  view.title = shortened(pageTitle);
  view.start = static_cast<unsigned int>(std::max(first, 0));
  view.total = static_cast<unsigned int>(std::max(all, 0));
}

void BrowserService::Page::add(const std::string& path, const std::string& name, const std::string& detail,
                               const std::string* picture) {
  if (view.entries.size() >= MOST_ENTRIES || path.size() > LONGEST_PATH) return;
  view.entries.push_back({path, shortened(name), shortened(detail), nullptr});
  pictures.push_back(picture);
}

void BrowserService::mediaRootNode(const MediaRootNodeStruct& node) {
  const std::unique_ptr<const MediaSourceStruct[]> sources(node.mediaSources);
  Page page(Level::root, node.path, "Media", 0, static_cast<int>(node.mediaSourceCount));
  for (unsigned int i = 0; i < node.mediaSourceCount; ++i) {
    page.add(sources[i].path, sources[i].name, "", &sources[i].albumArt);
  }
  show(std::move(page));
}

void BrowserService::mediaSourceNode(const MediaSourceNodeStruct& node) {
  const std::unique_ptr<const MediaListStruct[]> lists(node.lists);
  Page page(Level::source, node.source.path, node.source.name, node.start, node.total);
  for (unsigned int i = 0; i < node.listCount; ++i) {
    page.add(lists[i].path, lists[i].name, wordFor(lists[i].type), &lists[i].albumArt);
  }
  show(std::move(page));
}

void BrowserService::mediaListNode(const MediaListNodeStruct& node) {
  const std::unique_ptr<const MediaSongStruct[]> songs(node.songs);
  Page page(Level::list, node.list.path, node.list.name, node.start, node.total);
  for (unsigned int i = 0; i < node.songCount; ++i) {
    page.add(songs[i].path, songs[i].name, joined(songs[i].artist, songs[i].album), nullptr);
  }
  show(std::move(page));
}

// The answers do not tell their requests. A phone that does not know a path answers with the root.
bool BrowserService::isAwaited(const Page& page) const {
  return awaited_ && (page.level == Level::root || page.view.path == awaited_->path);
}

void BrowserService::fill(BrowserView* shown, Page* page) {
  const unsigned int size = sizeOf(page->view);
  page->view.total = std::max(page->view.total, page->view.start + size);
  page->view.open = shown->open;
  const unsigned int wanted = std::max(awaited_->selected, page->view.start) - page->view.start;
  page->view.selected = size == 0 ? 0 : std::min(wanted, size - 1);
  if (page->level == Level::root) trail_.clear();
  level_ = page->level;
  *shown = page->view;
}

void BrowserService::show(Page page) {
  LateImages images(context_.images);
  for (std::size_t i = 0; i < page.pictures.size(); ++i) {
    if (page.pictures[i] == nullptr) continue;
    page.view.entries[i].image = images.take(*page.pictures[i], [i](ClusterView& view, const Image& image) {
      view.browser.entries[i].image = image;
    });
  }
  bool awaited = false;
  std::optional<Newest::Ticket> ticket;
  std::optional<Request> onwards;
  context_.cluster->change([&](ClusterView& view) {
    awaited = isAwaited(page);
    if (!awaited) return;
    ticket = newestPage_.next();
    fill(&view.browser, &page);
    // A phone that answers everything with its root is not asked again and again.
    const bool isPassedOver =
        page.level == Level::root && page.view.entries.size() == 1 && awaited_->path.empty();
    awaited_.reset();
    if (isPassedOver) onwards = begin(view, {page.view.entries[0].path, 0, 0});
  });
  if (!awaited) return;
  context_.tally->count(&ServiceTotals::browserPages);
  images.follow(*ticket);
  send(onwards);
}

void BrowserService::mediaSongNode(const MediaSongNodeStruct& node) {
  const auto show = [path = node.song.path](ClusterView& view, const Image& image) {
    std::vector<BrowserView::Entry>& entries = view.browser.entries;
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&path](const BrowserView::Entry& entry) { return entry.path == path; });
    if (found != entries.end()) found->image = image;
  };
  LateImages images(context_.images);
  const Image picture = images.take(node.albumArt, show);
  const Newest::Ticket ticket = newestSong_.next();
  context_.cluster->change([&](ClusterView& view) { show(view, picture); });
  images.follow(ticket);
}

}  // namespace headunit
