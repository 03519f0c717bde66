#ifndef PHONE_TOUCHSCREEN_H
#define PHONE_TOUCHSCREEN_H

#include <protos.pb.h>

#include <deque>
#include <vector>

#include "phone/Discovery.h"
#include "phone/Timers.h"
#include "phone/media/TestPictureSource.h"

namespace phone {

struct TouchStats {
  std::uint64_t received = 0;
  std::uint64_t shown = 0;
  std::vector<Micros> latencies;  ///< From a touch's arrival until the first picture that shows it was sent.
};

/// Puts a mark into the test picture where each finger is, a faint one where a finger was lifted last, and
/// measures how long that takes. Each touch event raises the picture's touch sequence number by exactly one,
/// so that who sent the touches can count along.
class TouchScreen {
 public:
  explicit TouchScreen(const Timers* timers) : timers_(timers) {}

  /// The space in which the car tells coordinates; without it they are the picture's own.
  void setSpace(PictureSize space) { space_ = space; }

  /// Shows touches in `picture` from now on, those included that came before it; null for none.
  void setPicture(TestPictureSource* picture);
  void take(const TouchEvent& event);
  /// A picture that shows touches up to this sequence number has been sent.
  void onPictureSent(std::uint32_t sequence);

  const TouchStats& stats() const { return stats_; }

 private:
  void show();

  const Timers* timers_;
  PictureSize space_{0, 0};
  TestPictureSource* picture_ = nullptr;
  TouchEvent latest_;
  std::deque<Micros> unseen_;  ///< When the touches came that no picture shows yet.
  TouchStats stats_;
};

}  // namespace phone

#endif
