#pragma once

#include <string>

#include "IMediaBrowserCallbacks.h"
#include "ProtocolEndpointBase.h"
#include "VantryExport.h"

/// The service through which the head unit browses the phone's media, a tree of nodes addressed by path: the
/// root lists sources, a source lists lists, a list lists songs. A translator only: no tree, no cache, no
/// table of open requests, and no check of paths and indices in either direction.
class VANTRY_EXPORT MediaBrowserEndpoint : public ProtocolEndpointBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter(). Keeps a reference to
  /// `browserCallbacks` until destruction; with a pointer to no object messages count as handled and go
  /// nowhere.
  MediaBrowserEndpoint(int id, MessageRouter* messageRouter,
                       const shared_ptr<IMediaBrowserCallbacks>& browserCallbacks);
  ~MediaBrowserEndpoint() override;

  /// Any thread: asks for the node at `path`, its page from element `start` on, and pictures if
  /// `getAlbumArt`. The answer comes by IMediaBrowserCallbacks. A `start` above INT_MAX goes out negative.
  /// Always STATUS_SUCCESS, also if no channel is open, which drops the request.
  int mediaGetNode(const std::string& path, unsigned int start, bool getAlbumArt);

  /// Any thread: a key of the instrument cluster, an InstrumentClusterInput_InstrumentClusterAction (1 to 7),
  /// on the node at `path`; an empty one counts as not given. STATUS_INVALID_INPUT, and nothing sent, for any
  /// other number; otherwise STATUS_SUCCESS, also if no channel is open, which drops the message.
  int reportAction(const std::string& path, unsigned int action);

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;

  // What routeMessage makes of each node. Reader thread. STATUS_SUCCESS; a record that is missing inside the
  // node leaves its texts empty.
  int handleRootNode(const MediaRootNode& node);
  int handleSourceNode(const MediaSourceNode& node);
  int handleListNode(const MediaListNode& node);
  int handleSongNode(const MediaSongNode& node);

  /// Fills `copy`; texts that `source` does not have stay as they were.
  static void copySourceNode(const MediaSource& source, MediaSourceStruct* copy);
  /// Fills `copy`; texts that `list` does not have become empty.
  static void copyListNode(const MediaList& list, MediaListStruct* copy);
  /// Fills `copy`; texts that `song` does not have become empty.
  static void copySongNode(const MediaSong& song, MediaSongStruct* copy);

 private:
  shared_ptr<IMediaBrowserCallbacks> callbacks;
};
