#pragma once

#include <MediaBrowserEndpoint.h>

#include "headunit/services/Hosted.h"

namespace headunit {

/// Lets the user walk through the phone's media, a page at a time. The top is asked for as soon as the phone
/// opens the service, so that it is there when the user wants to see it; a top with a single source is passed
/// over. A song that is entered is played by the phone.
///
///     up, down      the entry before or behind; beyond the page's ends the next page is asked for
///     left, right   a page back or on
///     enter         into the entry; on a song: the key goes to the phone
///     back          to where the user came from; at the top: closes the list
class BrowserService : public IMediaBrowserCallbacks {
 public:
  using Interface = IMediaBrowserCallbacks;

  /// `opensItself`: the list is shown without the user's asking.
  BrowserService(const ServiceContext& context, bool opensItself)
      : context_(context), opensItself_(opensItself) {}
  void answerThrough(MediaBrowserEndpoint* endpoint) { endpoint_ = endpoint; }
  void opened();
  void closed();

  // Any thread.

  /// Shows the list, or hides it. A page that has not come by the time that it is shown is asked for again.
  void toggle();
  void up() { move(-1); }
  void down() { move(1); }
  void pageBack() { turn(-1); }
  void pageOn() { turn(1); }
  void enter();
  void back();

  void mediaRootNode(const MediaRootNodeStruct& node) override;
  void mediaSourceNode(const MediaSourceNodeStruct& node) override;
  void mediaListNode(const MediaListNodeStruct& node) override;
  void mediaSongNode(const MediaSongNodeStruct& node) override;

 private:
  enum class Level { root, source, list };

  /// A page asked for, or to be asked for again.
  struct Request {
    std::string path;
    unsigned int start = 0;
    unsigned int selected = 0;  ///< in the whole list
  };

  /// A page that has come.
  struct Page {
    Page(Level pageLevel, const std::string& pagePath, const std::string& pageTitle, int first, int all);
    /// `picture`: encoded, null if there is none; must stay as long as the page.
    void add(const std::string& path, const std::string& name, const std::string& detail,
             const std::string* picture);

    Level level = Level::root;
    BrowserView view;
    std::vector<const std::string*> pictures;  ///< of each entry; a page of them may be large
  };

  void move(int by);
  void turn(int pages);
  std::optional<Request> begin(ClusterView& view, Request request);
  void send(const std::optional<Request>& request);
  bool isAwaited(const Page& page) const;
  void show(Page page);
  void fill(BrowserView* shown, Page* page);

  const ServiceContext context_;
  const bool opensItself_;
  MediaBrowserEndpoint* endpoint_ = nullptr;
  Newest newestPage_;
  Newest newestSong_;
  // What follows is touched within a change of the cluster only, together with the view that it belongs to.
  Level level_ = Level::root;
  std::optional<Request> awaited_;
  std::vector<Request> trail_;  ///< where Back leads, the nearest last
};

using BrowserEndpoint = Hosted<MediaBrowserEndpoint, BrowserService>;

}  // namespace headunit
