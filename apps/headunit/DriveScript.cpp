#include "headunit/DriveScript.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>

#include "headunit/DriveFields.h"
#include "headunit/VehicleSensors.h"

namespace headunit {
namespace {

constexpr Range SECONDS{0, 86'400, "s"};
constexpr microseconds SHORTEST(10'000);
constexpr milliseconds UNTIL_THE_SENSORS_ARE_OPEN(20);
// Satellites that the phone has not asked for gather in the library without limit.
constexpr int SATELLITE_REPORTS = 100;
constexpr double AFTER_THE_LAST_STEP = 1;  // seconds, unless the drive tells its length

microseconds inMicroseconds(double seconds) { return microseconds(std::llround(seconds * 1e6)); }

DriveScript::Step parseStep(const JsonNode& node, std::set<int>* sensors) {
  DriveFields fields(node, "a step");
  DriveScript::Step step;
  step.at = inMicroseconds(fields.requiredNumber("t_s", SECONDS));
  for (const VehicleSensor& sensor : vehicleSensors()) {
    const JsonNode* const value = fields.any(sensor.key);
    if (value == nullptr) continue;
    step.values.push_back({sensor.type, sensor.parse(*value, sensor.key)});
    sensors->insert(sensor.type);
  }
  fields.finish();
  return step;
}

DriveScript parse(const JsonNode& root) {
  DriveFields fields(root, "a drive");
  DriveScript drive;
  drive.loops = fields.flag("loop").value_or(true);
  const std::optional<double> length = fields.number("length_s", SECONDS);
  const JsonNode* const steps = fields.list("steps");
  fields.finish();
  if (steps == nullptr || steps->items.empty())
    throw JsonProblem(root.line, "a drive needs \"steps\", one at least");
  for (const JsonNode& node : steps->items) {
    DriveScript::Step step = parseStep(node, &drive.sensors);
    if (!drive.steps.empty() && step.at < drive.steps.back().at) {
      throw JsonProblem(node.line, "this step is earlier than the one before it");
    }
    drive.steps.push_back(std::move(step));
  }
  drive.length =
      length ? inMicroseconds(*length) : drive.steps.back().at + inMicroseconds(AFTER_THE_LAST_STEP);
  if (drive.length < std::max(SHORTEST, drive.steps.back().at)) {
    throw JsonProblem(root.line, "\"length_s\" must be 0.01 at least, and not before the last step");
  }
  return drive;
}

}  // namespace

std::optional<DriveScript> parseDrive(const std::string& text, std::string* error) {
  try {
    return parse(parseLocatedJson(text));
  } catch (const JsonProblem& problem) {
    *error = "line " + std::to_string(problem.line()) + ": " + problem.what();
    return {};
  }
}

std::optional<DriveScript> loadDrive(const std::string& path, std::string* error) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  if (!file) {
    *error = path + ": " + (errno != 0 ? std::strerror(errno) : "it is empty");
    return {};
  }
  std::optional<DriveScript> drive = parseDrive(content.str(), error);
  if (!drive) *error = path + ", " + *error;
  return drive;
}

TimePoint DrivePlayer::act(TimePoint now) {
  if (!roundStarted_) {
    if (!sensors_->isChannelOpen()) return now + UNTIL_THE_SENSORS_ARE_OPEN;
    roundStarted_ = now;
  }
  for (;;) {
    if (next_ == drive_->steps.size() && !advance()) return TimePoint::max();
    const DriveScript::Step& step = drive_->steps[next_];
    const TimePoint due = *roundStarted_ + step.at;
    if (due > now) return due;
    for (const VehicleValue& value : step.values) tell(value);
    ++next_;
  }
}

void DrivePlayer::tell(const VehicleValue& value) {
  if (value.type == SENSOR_GPS_SATELLITE && ++satelliteReports_ > SATELLITE_REPORTS) return;
  value.report(sensors_);
  ++reports_;
}

// The next round, if there is one.
bool DrivePlayer::advance() {
  if (!drive_->loops) return false;
  *roundStarted_ += drive_->length;
  next_ = 0;
  return true;
}

}  // namespace headunit
