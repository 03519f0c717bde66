#pragma once

#include <Controller.h>
#include <IControllerCallbacks.h>

#include "headunit/LinkJournal.h"
#include "headunit/LinkStats.h"

namespace headunit {

/// What the phone says on the control channel: answered where it asks, and noted.
class ControlCallbacks : public IControllerCallbacks {
 public:
  /// All outlive this object.
  ControlCallbacks(Controller* controller, LinkJournal* journal, LinkStats* stats)
      : controller_(controller), journal_(journal), stats_(stats) {}

  void serviceDiscoveryRequest(const std::string& smallIcon, const std::string& mediumIcon,
                               const std::string& largeIcon, const std::string& labelText) override;
  void unrecoverableError() override;
  void pingRequest(long long timestamp, bool bugReport) override;
  void pingResponse(long long timestamp) override;
  void navigationFocusRequest(NavFocusType focusType) override;
  void byeByeRequest(ByeByeReason reason) override;
  void byeByeResponse() override;
  void voiceSessionNotification(VoiceSessionStatus status) override;
  void audioFocusRequest(AudioFocusRequestType request) override;
  void authenticationCompleted(int status) override;
  void versionResponse(unsigned long long major, unsigned long long minor) override;

 private:
  Controller* const controller_;
  LinkJournal* const journal_;
  LinkStats* const stats_;
};

}  // namespace headunit
