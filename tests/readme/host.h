#pragma once

// What the README's example leaves to its reader: the least that implements the library's interfaces.

#include <sys/socket.h>

#include <string>

#include "IControllerCallbacks.h"
#include "IVideoSinkCallbacks.h"
#include "Transport.h"

struct Credentials {
  std::string root, certificate, key;
};

class LinkEvents : public IControllerCallbacks {
 public:
  void serviceDiscoveryRequest(const std::string&, const std::string&, const std::string&,
                               const std::string&) override {}
  void unrecoverableError() override {}
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

class Screen : public IVideoSinkCallbacks {
 public:
  void dataAvailable(int, unsigned long long, shared_ptr<IoBuffer> const&, void*, unsigned int) override {}
  void codecConfig(void*, unsigned int) override {}
  int setup(int) override { return 0; }
  void playbackStart(int) override {}
  void playbackStop(int) override {}
  void mediaConfiguration(int) override {}
  void videoFocusRequest(int, int) override {}
};

class TcpTransport : public Transport {
 public:
  TcpTransport(VantryReceiver* link, int descriptor) : Transport(link), socket(descriptor) {}
  void abortTransfers() override { ::shutdown(socket, SHUT_RDWR); }
  int read(void* data, unsigned int length) override { return countOf(recv(socket, data, length, 0)); }
  int write(void* data, unsigned int length) override {
    return countOf(send(socket, data, length, MSG_NOSIGNAL));
  }

 private:
  static int countOf(ssize_t result) { return result > 0 ? static_cast<int>(result) : -1; }
  const int socket;
};
