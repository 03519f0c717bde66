#pragma once

#include <set>
#include <string>

#include "IBluetoothCallbacks.h"
#include "ProtocolEndpointBase.h"
#include "VantryExport.h"

/// The service through which phone and head unit arrange a Bluetooth pairing. It carries the exchange only:
/// the Bluetooth stack is the host's.
///
/// No request is remembered: the host may answer at any time, in any order and any number of times. An answer
/// is dropped while no channel is open, and none reports a failure.
class VANTRY_EXPORT BluetoothEndpoint : public ProtocolEndpointBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter(). Keeps a reference to
  /// `bluetoothCallbacks` until destruction or registerCallbacks. With a pointer to no object the phone's
  /// requests go unanswered.
  BluetoothEndpoint(int id, MessageRouter* messageRouter,
                    const shared_ptr<IBluetoothCallbacks>& bluetoothCallbacks);
  ~BluetoothEndpoint() override;

  /// Before discovery: the head unit's Bluetooth address, text that the library passes on as it is (initially
  /// empty).
  void registerCarBluetoothAddress(std::string const& address) { carBluetoothAddress = address; }

  /// Before discovery: offers `method`; twice is as once. A number outside the enumeration ends the process
  /// at discovery.
  void registerPairingMethod(BluetoothPairingMethod const& method) { supportedPairingMethods.insert(method); }

  /// Before discovery: takes a reference to `newCallbacks` and drops the former ones.
  void registerCallbacks(shared_ptr<IBluetoothCallbacks> const& newCallbacks) { callbacks = newCallbacks; }

  /// Any thread: the head unit is ready to pair. `alreadyPaired`: it knows the phone.
  void onReadyForPairing(bool alreadyPaired) { sendPairingResponse(STATUS_SUCCESS, alreadyPaired); }

  /// Any thread: the phone is to wait.
  void requestDelayedPairing() { sendPairingResponse(STATUS_PAIRING_DELAYED, false); }

  /// Any thread: the general answer. A `status` that is no MessageStatus ends the process.
  void sendPairingResponse(int status, bool alreadyPaired);

  /// Any thread: authentication data for the phone, text that is between the host and the phone. Copied.
  void sendAuthData(std::string const& authData);

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;

  /// Adds the address, also an empty one, and the methods in ascending order.
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;

 private:
  int handlePairingRequest(BluetoothPairingRequest const& request);

  std::string carBluetoothAddress;
  std::set<BluetoothPairingMethod> supportedPairingMethods;
  shared_ptr<IBluetoothCallbacks> callbacks;
};
