#pragma once

#include <string>

#include "VantryExport.h"

/// What the host hears of the phone's turn-by-turn guidance, event by event. All operations run on the reader
/// thread. A callback may send, call MessageRouter::closeChannel and Transport::requestStop; it must not call
/// Transport::waitForExit or VantryReceiver::shutdown, nor destroy the endpoint.
class VANTRY_EXPORT INavigationStatusCallbacks {
 public:
  virtual ~INavigationStatusCallbacks() = default;

  /// Whether guidance runs: a NavigationStatus_NavigationStatusEnum.
  virtual void navigationStatus(int status) = 0;

  /// The next turn. `road`: its name, possibly empty. `turnSide`: a NavigationNextTurnEvent_TurnSide, or 0 if
  /// the phone gave none. `event`: a NavigationNextTurnEvent_NextTurnEnum, 0 if it gave none. `image`: raw
  /// bytes in the phone's format, zero bytes included, not checked against the size and depth that were
  /// advertised; empty if it gave none. `turnAngle` and `turnNumber`, in this order: -1 if it gave none. Both
  /// strings are valid during the call.
  virtual void navigationNextTurn(const std::string& road, int turnSide, int event, const std::string& image,
                                  int turnAngle, int turnNumber) = 0;

  /// How far it is to the next turn, in metres and in seconds.
  virtual void navigationNextTurnDistance(int distanceMeters, int timeToTurnSeconds) = 0;
};
