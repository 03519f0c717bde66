#pragma once

#include <SensorSource.h>

#include <atomic>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "headunit/Clock.h"
#include "headunit/PacedThread.h"

namespace headunit {

/// Tells one value of the vehicle to the phone.
using VehicleReport = std::function<void(SensorSource* sensors)>;

struct VehicleValue {
  int type = 0;  ///< a SensorType
  VehicleReport report;
};

/// A drive: what the vehicle's sensors say, and when. docs/drive-format.md tells how it is written.
struct DriveScript {
  struct Step {
    microseconds at{0};
    std::vector<VehicleValue> values;
  };
  std::vector<Step> steps;  ///< in the order of their times, at least one
  microseconds length{0};   ///< 10 ms at least; after it the drive begins anew, if it loops
  bool loops = true;
  std::set<int> sensors;  ///< a SensorType for each sensor that the drive has values for
};

/// Reads a drive from its text. Nothing on failure, with the line and the reason in `*error`: "line 4:
/// REASON".
std::optional<DriveScript> parseDrive(const std::string& text, std::string* error);

/// The same from a file; the error names it.
std::optional<DriveScript> loadDrive(const std::string& path, std::string* error);

/// A short drive round the block, with every sensor.
const std::string& builtInDrive();

/// Plays a drive to one phone, from when it has opened the sensors.
class DrivePlayer : public PacedTask {
 public:
  /// Both outlive the player.
  DrivePlayer(const DriveScript* drive, SensorSource* sensors) : drive_(drive), sensors_(sensors) {}

  TimePoint act(TimePoint now) override;

  /// Any thread: how many values have been told.
  std::uint64_t reports() const { return reports_; }

 private:
  bool advance();
  void tell(const VehicleValue& value);

  const DriveScript* const drive_;
  SensorSource* const sensors_;
  std::optional<TimePoint> roundStarted_;
  std::size_t next_ = 0;
  int satelliteReports_ = 0;
  std::atomic<std::uint64_t> reports_{0};
};

}  // namespace headunit
