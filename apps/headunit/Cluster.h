#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "headunit/Bitmap.h"
#include "headunit/Clock.h"

namespace headunit {

class LinkStats;

/// The next turn, as the phone's navigation tells it.
struct TurnView {
  bool guiding = false;
  std::string road;
  int event = 0;   ///< the phone's number for the kind of turn
  int side = 0;    ///< TurnSide
  int angle = 0;   ///< degrees
  int number = 0;  ///< of the exit of a roundabout
  Image image;
  int meters = -1;   ///< to the turn; negative: not told yet
  int seconds = -1;  ///< to the turn; negative: not told yet
};

/// What the phone plays.
struct PlayingView {
  bool known = false;
  bool playing = false;
  std::string source;
  std::string song;
  std::string artist;
  std::string album;
  std::string playlist;
  unsigned int positionSeconds = 0;
  unsigned int durationSeconds = 0;
  bool shuffle = false;
  bool repeat = false;
  bool repeatOne = false;
  Image cover;
};

struct CallView {
  int state = 0;  ///< PhoneState
  std::string number;
  std::string caller;
  unsigned int seconds = 0;
  Image portrait;
};

struct PhoneView {
  bool known = false;  ///< the phone has told of it, which not every phone does
  unsigned int signal = 0;
  std::vector<CallView> calls;
  std::string awaited = {};  ///< where a phone is expected, "on HOST:PORT"; empty while one is connected
};

/// A page of the phone's media tree.
struct BrowserView {
  struct Entry {
    std::string path;
    std::string name;
    std::string detail;  ///< artist and album, where there are any
    Image image;
  };
  bool open = false;     ///< whether the user looks at it
  bool loading = false;  ///< asked for, and not come yet
  std::string path;
  std::string title;
  std::vector<Entry> entries;  ///< of this page
  unsigned int start = 0;      ///< the index of the page's first entry in the whole list
  unsigned int total = 0;
  unsigned int selected = 0;  ///< index into `entries`
};

/// The car's own radio, which the phone may tune.
struct TunerView {
  bool on = false;
  bool scanning = false;
  int frequencyHz = 0;
  std::string station;
  std::string text;
  bool stereo = false;
};

struct NoticeView {
  std::string text;
  TimePoint until;  ///< it is shown so long
};

struct PairingView {
  std::string phoneAddress;
  std::string method;   ///< in words
  std::string passkey;  ///< what the user compares or types; empty if the method has none
};

/// All that stands beside the picture.
struct ClusterView {
  const LinkStats* link = nullptr;  ///< of the link that is up, as its pictures have them; null: none is
  bool ofPhone = false;             ///< a phone is connected, or was and has left this behind
  TurnView turn;
  PlayingView media;
  PhoneView phone;
  BrowserView browser;
  TunerView tuner;
  std::optional<NoticeView> notice;    ///< a toast
  std::optional<PairingView> pairing;  ///< a dialogue that waits for an answer
};

/// What the cluster shows now. Links write it, screens read it: any thread, any number at once.
class Cluster {
 public:
  /// Before use: called after each change, on the thread that made it.
  void whenChanged(std::function<void()> call) { whenChanged_ = std::move(call); }

  void change(const std::function<void(ClusterView&)>& change) {
    {
      const std::lock_guard lock(mutex_);
      change(view_);
      ++version_;
    }
    whenChanged_();
  }

  ClusterView view() const {
    const std::lock_guard lock(mutex_);
    return view_;
  }

  /// Which link is up now.
  const LinkStats* link() const {
    const std::lock_guard lock(mutex_);
    return view_.link;
  }

  /// Grows with each change.
  std::uint64_t version() const {
    const std::lock_guard lock(mutex_);
    return version_;
  }

 private:
  std::function<void()> whenChanged_ = [] {};
  mutable std::mutex mutex_;
  ClusterView view_;
  std::uint64_t version_ = 0;
};

}  // namespace headunit
