#pragma once

#include <functional>

#include "IControllerCallbacks.h"

namespace test {

/// A host that lets the link run without a word.
struct QuietHost : IControllerCallbacks {
  std::function<void()> onFailure = [] {};  ///< Runs inside unrecoverableError. Before the link starts.

  void serviceDiscoveryRequest(const std::string&, const std::string&, const std::string&,
                               const std::string&) override {}
  void unrecoverableError() override { onFailure(); }
  void pingRequest(long long, bool) override {}
  void pingResponse(long long) override {}
  void navigationFocusRequest(NavFocusType) override {}
  void byeByeRequest(ByeByeReason) override {}
  void byeByeResponse() override {}
  void voiceSessionNotification(VoiceSessionStatus) override {}
  void audioFocusRequest(AudioFocusRequestType) override {}
  void authenticationCompleted(int) override {}
  void versionResponse(unsigned long long, unsigned long long) override {}
};

}  // namespace test
