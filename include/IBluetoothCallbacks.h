#pragma once

#include <string>

#include "VantryExport.h"

/// What the host hears of a Bluetooth pairing. Runs on the reader thread: pair elsewhere. A callback may
/// send, call MessageRouter::closeChannel and Transport::requestStop; it must not call Transport::waitForExit
/// or VantryReceiver::shutdown, nor destroy the endpoint.
class VANTRY_EXPORT IBluetoothCallbacks {
 public:
  virtual ~IBluetoothCallbacks() = default;

  /// The phone asks to pair. `phoneAddress` is its Bluetooth address as text, valid during the call;
  /// `pairingMethod` is a BluetoothPairingMethod, possibly one that was never offered, which is for the host
  /// to refuse. Answer with BluetoothEndpoint::onReadyForPairing, requestDelayedPairing or
  /// sendPairingResponse, now or later.
  virtual void pairingRequest(std::string const& phoneAddress, int pairingMethod) = 0;
};
