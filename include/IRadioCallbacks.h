#pragma once

#include "RdsData.h"
#include "VantryExport.h"

/// What the phone wants of the host's tuner. All operations run on the reader thread, and the link stands
/// still while they run. A callback may send, call MessageRouter::closeChannel and Transport::requestStop; it
/// must not call Transport::waitForExit or VantryReceiver::shutdown, nor destroy the endpoint.
class VANTRY_EXPORT IRadioCallbacks {
 public:
  virtual ~IRadioCallbacks() = default;

  /// Tune to `frequencyHz` (hertz, 0 if the phone named none). Returns whether it was done; the phone is
  /// answered as soon as this returns. To tell the phone of the station as well, also where it could not be
  /// tuned, set `*hasRdsData`, which is false before, and fill `*rdsData`. Both are valid during the call.
  virtual bool setStation(int frequencyHz, bool* hasRdsData, RdsData* rdsData) = 0;

  /// Switch the tuner off. The phone is answered by itself.
  virtual void powerOff() = 0;

  /// Scan for the next station, forwards or backwards. Report the end with RadioEndpoint::notifyScanComplete.
  /// May come again while a scan is under way.
  virtual void scan(bool forward) = 0;

  /// The phone asks for the current station's data: answer with RadioEndpoint::sendRdsData, now or later.
  virtual void stationInfoRequest() = 0;
};
