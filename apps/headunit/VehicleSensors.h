#pragma once

#include <string>
#include <vector>

#include "headunit/DriveScript.h"
#include "headunit/LocatedJson.h"

namespace headunit {

/// One sensor as a drive names it.
struct VehicleSensor {
  const char* key;  ///< in a step
  int type;         ///< a SensorType
  /// Turns the value, in physical units, into a report of fixed-point numbers. Throws JsonProblem for a wrong
  /// one.
  VehicleReport (*parse)(const JsonNode& value, const std::string& key);
};

/// All 21.
const std::vector<VehicleSensor>& vehicleSensors();

}  // namespace headunit
