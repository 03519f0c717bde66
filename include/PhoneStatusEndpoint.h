#pragma once

#include <string>

#include "IPhoneStatusCallbacks.h"
#include "ProtocolEndpointBase.h"
#include "VantryExport.h"

/// The service that shows the phone's calls and signal, and takes keys of the instrument cluster back to it.
/// The phone sends whenever it likes; nothing is kept or compared with what came before.
class VANTRY_EXPORT PhoneStatusEndpoint : public ProtocolEndpointBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter(). Keeps a reference to `phoneCallbacks`
  /// until destruction; with a pointer to no object messages count as handled and go nowhere.
  PhoneStatusEndpoint(int id, MessageRouter* messageRouter,
                      const shared_ptr<IPhoneStatusCallbacks>& phoneCallbacks);
  ~PhoneStatusEndpoint() override;

  /// Any thread: a key of the instrument cluster, an InstrumentClusterInput_InstrumentClusterAction (1 to 7),
  /// and the call that it concerns; an empty text counts as not given. STATUS_INVALID_INPUT, and nothing
  /// sent, for any other number; otherwise STATUS_SUCCESS, also if no channel is open, which drops the
  /// message.
  int reportAction(const std::string& callerNumber, const std::string& callerId, unsigned int action);

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;

 private:
  int handlePhoneStatus(const PhoneStatus& status);

  shared_ptr<IPhoneStatusCallbacks> callbacks;
};
