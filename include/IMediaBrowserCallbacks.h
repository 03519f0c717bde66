#pragma once

#include "MediaListNodeStruct.h"
#include "MediaRootNodeStruct.h"
#include "MediaSongNodeStruct.h"
#include "MediaSourceNodeStruct.h"
#include "VantryExport.h"

/// The nodes of the phone's media tree that the host asked for, in the order in which they arrive; which
/// request one answers is not told. All operations run on the reader thread. A callback may send, call
/// MessageRouter::closeChannel and Transport::requestStop; it must not call Transport::waitForExit or
/// VantryReceiver::shutdown, nor destroy the endpoint.
///
/// A node is valid during the call, but its array (`mediaSources`, `lists`, `songs`) passes to the host, also
/// an empty one: the host keeps it for as long as it likes and releases it with delete[].
class VANTRY_EXPORT IMediaBrowserCallbacks {
 public:
  virtual ~IMediaBrowserCallbacks() = default;

  /// The top of the tree, with its sources.
  virtual void mediaRootNode(const MediaRootNodeStruct& node) = 0;
  /// A source, with a page of its lists.
  virtual void mediaSourceNode(const MediaSourceNodeStruct& node) = 0;
  /// A list, with a page of its songs.
  virtual void mediaListNode(const MediaListNodeStruct& node) = 0;
  /// A song, with its picture if one was asked for.
  virtual void mediaSongNode(const MediaSongNodeStruct& node) = 0;
};
