#include "phone/services/EchoPlayer.h"

#include <string>

namespace phone {

namespace {

constexpr Micros interval = 5'000'000;

}  // namespace

void EchoPlayer::onTime() {
  const std::string words = "Is anybody there? (" + std::to_string(++count_) + ")";
  sendBytes(Bytes(words.begin(), words.end()));
  wake(interval);
}

}  // namespace phone
