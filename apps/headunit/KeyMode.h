#pragma once

#include <string>

#include "headunit/Cluster.h"
#include "headunit/ClusterKeys.h"

namespace headunit {

/// What the cluster's keys mean at one time. A click on the strip stands for keys that were right when the
/// strip was drawn: if they mean something else by now, a question or a call has come in between, and nobody
/// has meant to answer that.
struct KeyMode {
  std::string pairing;  ///< whose question waits, and takes all keys; empty: nobody's
  bool rings = false;
  bool hasNotice = false;
  bool hasList = false;
  std::string path;  ///< of the list, as are the next two
  unsigned int start = 0;
  unsigned int selected = 0;

  /// What it is once `key` has moved through the page of a list.
  void moveBy(ClusterKey key);
};

bool operator==(const KeyMode& one, const KeyMode& other);

KeyMode keyModeOf(const ClusterView& view, TimePoint now);

}  // namespace headunit
