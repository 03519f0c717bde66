#pragma once

#include "VantryExport.h"

/// What receives the bytes of a vendor extension. A callback may send, call MessageRouter::closeChannel and
/// Transport::requestStop; it must not call Transport::waitForExit or VantryReceiver::shutdown, nor destroy
/// the endpoint.
class VANTRY_EXPORT IVendorExtensionCallbacks {
 public:
  virtual ~IVendorExtensionCallbacks() = default;

  /// One whole message, nothing removed: `length` bytes at `data`, lent for the length of the call, on the
  /// reader thread. Returns a MessageStatus: STATUS_UNEXPECTED_MESSAGE makes the phone hear that its message
  /// was not understood, and any other number changes nothing.
  virtual int dataAvailable(unsigned char* data, unsigned int length) = 0;
};
