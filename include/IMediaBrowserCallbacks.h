#pragma once

#include "MediaListNodeStruct.h"
#include "MediaRootNodeStruct.h"
#include "MediaSongNodeStruct.h"
#include "MediaSourceNodeStruct.h"
#include "VantryExport.h"

/// The nodes of the phone's media tree that the host asked for, in the order in which they arrive; which
/// request one answers is not told. All operations run on the reader thread.
///
/// A node is valid during the call, but its array (`mediaSources`, `lists`, `songs`) passes to the host, also
/// an empty one: the host keeps it for as long as it likes and releases it with delete[].
class VANTRY_EXPORT IMediaBrowserCallbacks {
 public:
  virtual ~IMediaBrowserCallbacks() = default;

  virtual void mediaRootNode(const MediaRootNodeStruct& node) = 0;
  virtual void mediaSourceNode(const MediaSourceNodeStruct& node) = 0;
  virtual void mediaListNode(const MediaListNodeStruct& node) = 0;
  virtual void mediaSongNode(const MediaSongNodeStruct& node) = 0;
};
