#pragma once

#include <functional>

#include "Bytes.h"
#include "ProtocolEndpointBase.h"

namespace test {

/// A service that keeps what reaches it and answers as told.
class RecordingEndpoint : public ProtocolEndpointBase {
 public:
  RecordingEndpoint(int id, MessageRouter* messageRouter, bool raw = false)
      : ProtocolEndpointBase(id, messageRouter, raw) {}

  std::vector<Bytes> messages;      ///< as delivered, the type bytes included
  std::vector<std::string> events;  ///< "opened 3", "message 32769 on 3", "raw on 3", "closed 3"
  int answer = 0;                   ///< what the next messages get
  bool refuses = false;             ///< refuses to be opened
  std::function<void(const shared_ptr<IoBuffer>&)> onMessage;

  bool onChannelClosed(unsigned char channel) override {
    events.push_back("closed " + std::to_string(channel));
    return ProtocolEndpointBase::onChannelClosed(channel);
  }
  bool mayOpenChannel(unsigned char channel) override {
    return !refuses && ProtocolEndpointBase::mayOpenChannel(channel);
  }
  void onChannelOpened(unsigned char channel) override {
    events.push_back("opened " + std::to_string(channel));
    ProtocolEndpointBase::onChannelOpened(channel);
  }
  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override {
    events.push_back("message " + std::to_string(type) + " on " + std::to_string(channel));
    return keep(message);
  }
  int handleRawMessage(unsigned char channel, const shared_ptr<IoBuffer>& message) override {
    events.push_back("raw on " + std::to_string(channel));
    return keep(message);
  }
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override {
    response->add_services()->set_id(id());
  }

  // Open to tests.
  using ProtocolEndpointBase::sendMessage;
  using ProtocolEndpointBase::sendRecord;

 private:
  int keep(const shared_ptr<IoBuffer>& message) {
    messages.emplace_back(message->content(), message->size());
    if (onMessage) onMessage(message);
    return answer;
  }
};

}  // namespace test
