#include "headunit/ControlCallbacks.h"

#include <spdlog/spdlog.h>

#include "headunit/Printable.h"

namespace headunit {

void ControlCallbacks::serviceDiscoveryRequest(const std::string&, const std::string&, const std::string&,
                                               const std::string& labelText) {
  spdlog::info("The phone calls itself '{}'.", printable(labelText));
}

void ControlCallbacks::unrecoverableError() {
  journal_->note([](LinkNews& news) { news.beyondRepair = true; });
}

void ControlCallbacks::pingRequest(long long, bool) {}

// Our pings carry the steady clock's microseconds.
void ControlCallbacks::pingResponse(long long timestamp) {
  const auto now = std::chrono::duration_cast<microseconds>(Clock::now().time_since_epoch());
  if (timestamp < 0 || timestamp > now.count()) return;  // none of ours
  stats_->pinged(now - microseconds(timestamp));
}

void ControlCallbacks::navigationFocusRequest(NavFocusType focusType) {
  controller_->setNavigationFocus(focusType);
}

void ControlCallbacks::byeByeRequest(ByeByeReason) {
  controller_->sendByeByeResponse();
  journal_->note([](LinkNews& news) { news.phoneSaidBye = true; });
}

void ControlCallbacks::byeByeResponse() {
  journal_->note([](LinkNews& news) { news.phoneAnsweredBye = true; });
}

void ControlCallbacks::voiceSessionNotification(VoiceSessionStatus status) {
  spdlog::debug("Voice session: {}", static_cast<int>(status));
}

// This car has no sound of its own that the phone would have to share with: it gets what it asks for. States
// 1 to 4 stand for the four requests.
void ControlCallbacks::audioFocusRequest(AudioFocusRequestType request) {
  if (!AudioFocusRequestType_IsValid(request)) return;
  controller_->setAudioFocus(static_cast<AudioFocusStateType>(request), false);
}

void ControlCallbacks::authenticationCompleted(int status) {
  if (status == STATUS_SUCCESS) stats_->authenticated(Clock::now());
  journal_->note([status](LinkNews& news) { news.authentication = status; });
}

void ControlCallbacks::versionResponse(unsigned long long major, unsigned long long minor) {
  spdlog::debug("The phone speaks version {}.{}.", major, minor);
  journal_->note([](LinkNews& news) { news.versionAccepted = true; });
}

}  // namespace headunit
