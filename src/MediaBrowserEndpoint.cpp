#include "MediaBrowserEndpoint.h"

#include "InstrumentCluster.h"
#include "Message.h"

namespace {

/// Copies `records` into an array that passes to the host, whose size it stores in `count`.
template <class Records, class Record, class Copy>
Copy* copyEach(const Records& records, void (*copyOne)(const Record&, Copy*), unsigned int* count) {
  *count = static_cast<unsigned int>(records.size());
  auto* const copies = new Copy[*count];
  for (unsigned int i = 0; i < *count; ++i) copyOne(records.Get(static_cast<int>(i)), &copies[i]);
  return copies;
}

}  // namespace

MediaBrowserEndpoint::MediaBrowserEndpoint(int id, MessageRouter* messageRouter,
                                           const shared_ptr<IMediaBrowserCallbacks>& browserCallbacks)
    : ProtocolEndpointBase(id, messageRouter, false), callbacks(browserCallbacks) {}

MediaBrowserEndpoint::~MediaBrowserEndpoint() = default;

int MediaBrowserEndpoint::routeMessage(unsigned char, unsigned short type,
                                       const shared_ptr<IoBuffer>& message) {
  switch (type) {
    case MESSAGE_MEDIA_ROOT_NODE: return handleRecord(this, message, &MediaBrowserEndpoint::handleRootNode);
    case MESSAGE_MEDIA_SOURCE_NODE:
      return handleRecord(this, message, &MediaBrowserEndpoint::handleSourceNode);
    case MESSAGE_MEDIA_LIST_NODE: return handleRecord(this, message, &MediaBrowserEndpoint::handleListNode);
    case MESSAGE_MEDIA_SONG_NODE: return handleRecord(this, message, &MediaBrowserEndpoint::handleSongNode);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}

void MediaBrowserEndpoint::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  service->mutable_media_browser_service();
}

int MediaBrowserEndpoint::handleRootNode(const MediaRootNode& node) {
  if (!callbacks) return STATUS_SUCCESS;
  MediaRootNodeStruct copy;
  copy.path = node.path();
  copy.mediaSources = copyEach(node.media_sources(), copySourceNode, &copy.mediaSourceCount);
  callbacks->mediaRootNode(copy);
  return STATUS_SUCCESS;
}

int MediaBrowserEndpoint::handleSourceNode(const MediaSourceNode& node) {
  if (!callbacks) return STATUS_SUCCESS;
  MediaSourceNodeStruct copy;
  copySourceNode(node.source(), &copy.source);
  copy.start = node.start();
  copy.total = node.total();
  copy.lists = copyEach(node.lists(), copyListNode, &copy.listCount);
  callbacks->mediaSourceNode(copy);
  return STATUS_SUCCESS;
}

int MediaBrowserEndpoint::handleListNode(const MediaListNode& node) {
  if (!callbacks) return STATUS_SUCCESS;
  MediaListNodeStruct copy;
  copyListNode(node.list(), &copy.list);
  copy.start = node.start();
  copy.total = node.total();
  copy.songs = copyEach(node.songs(), copySongNode, &copy.songCount);
  callbacks->mediaListNode(copy);
  return STATUS_SUCCESS;
}

int MediaBrowserEndpoint::handleSongNode(const MediaSongNode& node) {
  if (!callbacks) return STATUS_SUCCESS;
  MediaSongNodeStruct copy;
  copySongNode(node.song(), &copy.song);
  copy.albumArt = node.album_art();
  copy.durationSeconds = node.duration_seconds();
  callbacks->mediaSongNode(copy);
  return STATUS_SUCCESS;
}

void MediaBrowserEndpoint::copySourceNode(const MediaSource& source, MediaSourceStruct* copy) {
  if (source.has_path()) copy->path = source.path();
  if (source.has_name()) copy->name = source.name();
  if (source.has_album_art()) copy->albumArt = source.album_art();
}

void MediaBrowserEndpoint::copyListNode(const MediaList& list, MediaListStruct* copy) {
  copy->path = list.path();
  copy->type = list.type();
  copy->name = list.name();
  copy->albumArt = list.album_art();
}

void MediaBrowserEndpoint::copySongNode(const MediaSong& song, MediaSongStruct* copy) {
  copy->path = song.path();
  copy->name = song.name();
  copy->artist = song.artist();
  copy->album = song.album();
}

int MediaBrowserEndpoint::mediaGetNode(const std::string& path, unsigned int start, bool getAlbumArt) {
  MediaGetNode request;
  request.set_path(path);
  request.set_start(static_cast<int>(start));
  request.set_get_album_art(getAlbumArt);
  sendRecord(MESSAGE_MEDIA_GET_NODE, request);
  return STATUS_SUCCESS;
}

int MediaBrowserEndpoint::reportAction(const std::string& path, unsigned int action) {
  if (!isInstrumentClusterAction(action)) return STATUS_INVALID_INPUT;
  MediaBrowserInput message;
  if (!path.empty()) message.set_path(path);
  setInstrumentClusterAction(action, message.mutable_input());
  sendRecord(MESSAGE_MEDIA_BROWSER_INPUT, message);
  return STATUS_SUCCESS;
}
