#pragma once

#include <functional>

#include "IControllerCallbacks.h"

namespace test {

/// A host that lets the link run without a word.
struct QuietHost : IControllerCallbacks {
  // Set before the link starts.
  std::function<void()> onFailure = [] {};  ///< Runs inside unrecoverableError,
  std::function<void()> onByeBye = [] {};   ///< inside byeByeRequest.

  void serviceDiscoveryRequest(const std::string&, const std::string&, const std::string&,
                               const std::string&) override {}
  void unrecoverableError() override { onFailure(); }
  void pingRequest(long long, bool) override {}
  void pingResponse(long long) override {}
  void navigationFocusRequest(NavFocusType) override {}
  void byeByeRequest(ByeByeReason) override { onByeBye(); }
  void byeByeResponse() override {}
  void voiceSessionNotification(VoiceSessionStatus) override {}
  void audioFocusRequest(AudioFocusRequestType) override {}
  void authenticationCompleted(int) override {}
  void versionResponse(unsigned long long, unsigned long long) override {}
};

}  // namespace test
