#pragma once

#include <gmock/gmock.h>

#include "IControllerCallbacks.h"
#include "IVideoSinkCallbacks.h"

namespace test {

struct MockControllerCallbacks : IControllerCallbacks {
  MOCK_METHOD(void, serviceDiscoveryRequest,
              (const std::string&, const std::string&, const std::string&, const std::string&), (override));
  MOCK_METHOD(void, unrecoverableError, (), (override));
  MOCK_METHOD(void, pingRequest, (long long, bool), (override));
  MOCK_METHOD(void, pingResponse, (long long), (override));
  MOCK_METHOD(void, navigationFocusRequest, (NavFocusType), (override));
  MOCK_METHOD(void, byeByeRequest, (ByeByeReason), (override));
  MOCK_METHOD(void, byeByeResponse, (), (override));
  MOCK_METHOD(void, voiceSessionNotification, (VoiceSessionStatus), (override));
  MOCK_METHOD(void, audioFocusRequest, (AudioFocusRequestType), (override));
  MOCK_METHOD(void, authenticationCompleted, (int), (override));
  MOCK_METHOD(void, versionResponse, (unsigned long long, unsigned long long), (override));
};

struct MockVideoSinkCallbacks : IVideoSinkCallbacks {
  MOCK_METHOD(void, dataAvailable,
              (int, unsigned long long, shared_ptr<IoBuffer> const&, void*, unsigned int), (override));
  MOCK_METHOD(void, codecConfig, (void*, unsigned int), (override));
  MOCK_METHOD(int, setup, (int), (override));
  MOCK_METHOD(void, playbackStart, (int), (override));
  MOCK_METHOD(void, playbackStop, (int), (override));
  MOCK_METHOD(void, mediaConfiguration, (int), (override));
  MOCK_METHOD(void, videoFocusRequest, (int, int), (override));
};

}  // namespace test
