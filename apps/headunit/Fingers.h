#pragma once

#include <optional>
#include <vector>

namespace headunit {

/// One finger, or the mouse.
struct Finger {
  unsigned int id = 0;
  unsigned int x = 0;
  unsigned int y = 0;
};

/// One change of what touches the screen, as the phone is told it.
struct TouchChange {
  int action = 0;               ///< a PointerAction
  int index = 0;                ///< in `fingers`, of the one that the action concerns
  std::vector<Finger> fingers;  ///< all that touch; one that has just left is still among them
};

/// Keeps track of all fingers on the screen and makes touch reports of what they do. The pointer actions are:
/// 0 and 1 for the first finger down and the last one up, 5 and 6 for any other down or up, and 2 for a move.
class Fingers {
 public:
  /// Nothing if that finger is down already.
  std::optional<TouchChange> down(Finger finger);
  /// Nothing if that finger is not down, or has not moved.
  std::optional<TouchChange> move(Finger finger);
  /// Nothing if that finger is not down.
  std::optional<TouchChange> up(unsigned int id);

 private:
  std::vector<Finger>::iterator find(unsigned int id);
  TouchChange change(int action, std::vector<Finger>::iterator finger);

  std::vector<Finger> down_;
};

}  // namespace headunit
