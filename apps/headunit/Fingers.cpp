#include "headunit/Fingers.h"

#include <protos.pb.h>

#include <algorithm>

namespace headunit {

std::vector<Finger>::iterator Fingers::find(unsigned int id) {
  return std::find_if(down_.begin(), down_.end(), [id](const Finger& finger) { return finger.id == id; });
}

TouchChange Fingers::change(int action, std::vector<Finger>::iterator finger) {
  return {action, static_cast<int>(finger - down_.begin()), down_};
}

std::optional<TouchChange> Fingers::down(Finger finger) {
  if (find(finger.id) != down_.end()) return {};
  down_.push_back(finger);
  return change(down_.size() == 1 ? POINTER_ACTION_0 : POINTER_ACTION_5, down_.end() - 1);
}

std::optional<TouchChange> Fingers::move(Finger finger) {
  const auto found = find(finger.id);
  if (found == down_.end() || (found->x == finger.x && found->y == finger.y)) return {};
  *found = finger;
  return change(POINTER_ACTION_2, found);
}

std::optional<TouchChange> Fingers::up(unsigned int id) {
  const auto found = find(id);
  if (found == down_.end()) return {};
  TouchChange last = change(down_.size() == 1 ? POINTER_ACTION_1 : POINTER_ACTION_6, found);
  down_.erase(found);
  return last;
}

}  // namespace headunit
