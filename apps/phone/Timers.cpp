#include "phone/Timers.h"

#include <algorithm>
#include <vector>

namespace phone {

Timers::Id Timers::at(Micros due, std::function<void()> call) {
  const Id id{due, ++count_};
  calls_.emplace(id, std::move(call));
  return id;
}

void Timers::advance(Micros now) {
  now_ = std::max(now_, now);
  // What is added from inside a call has a higher count, and waits: a call that renews itself cannot loop
  // here.
  const std::uint64_t newest = count_;
  auto next = calls_.begin();
  while (next != calls_.end() && next->first.first <= now_) {
    if (next->first.second > newest) {
      ++next;
      continue;
    }
    const std::function<void()> call = std::move(next->second);
    calls_.erase(next);
    call();
    next = calls_.begin();
  }
}

std::optional<Micros> Timers::next() const {
  if (calls_.empty()) return std::nullopt;
  return calls_.begin()->first.first;
}

}  // namespace phone
