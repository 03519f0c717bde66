#include "headunit/DriveScript.h"

#include <algorithm>
#include <cmath>

#include "common/InputFile.h"
#include "headunit/DriveFields.h"
#include "headunit/VehicleSensors.h"

namespace headunit {
namespace {

constexpr Range SECONDS{0, 86'400, "s"};
constexpr microseconds SHORTEST(10'000);
constexpr milliseconds UNTIL_THE_SENSORS_ARE_OPEN(20);
// Satellites that the phone has not asked for gather in the library without limit.
constexpr int SATELLITE_REPORTS = 100;
constexpr programs::InputLimits FILE_LIMITS{16 << 20};
constexpr double AFTER_THE_LAST_STEP = 1;  // seconds, unless the drive tells its length

// What the library takes is sent when there is time for it, so that more than a link can carry would gather
// without limit. A step with every sensor, ten times a second, is about half of it.
constexpr std::size_t MOST_ENTRIES_A_SECOND = 2000;
constexpr microseconds SECOND(1'000'000);

microseconds inMicroseconds(double seconds) { return microseconds(std::llround(seconds * 1e6)); }

/// How much a step tells.
struct Load {
  microseconds at;
  std::size_t entries;
  int line;
};

std::size_t entriesIn(const JsonNode& node) {
  std::size_t entries = 0;
  for (const JsonNode& item : node.items) entries += entriesIn(item);
  for (const auto& [key, value] : node.members) entries += entriesIn(value);
  return std::max<std::size_t>(entries, 1);
}

// In no second, and a second may begin in one round and end in a later one.
void refuseTooMuch(const std::vector<Load>& loads, const DriveScript& drive) {
  const auto rounds =
      drive.loops ? 1 + static_cast<std::size_t>((SECOND + drive.length - microseconds(1)) / drive.length)
                  : 1;
  const auto loadOf = [&loads](std::size_t i) -> const Load& { return loads[i % loads.size()]; };
  const auto timeOf = [&](std::size_t i) {
    return loadOf(i).at + drive.length * static_cast<std::int64_t>(i / loads.size());
  };
  std::size_t entries = 0;
  std::size_t first = 0;  // of the second that ends with `last`
  for (std::size_t last = 0; last < rounds * loads.size(); ++last) {
    for (; timeOf(first) + SECOND <= timeOf(last); ++first) entries -= loadOf(first).entries;
    entries += loadOf(last).entries;
    if (entries > MOST_ENTRIES_A_SECOND)
      throw JsonProblem(loadOf(last).line, "with this step the drive tells more than " +
                                               std::to_string(MOST_ENTRIES_A_SECOND) +
                                               " numbers, words and flags within a second");
  }
}

DriveScript::Step parseStep(const JsonNode& node, std::set<int>* sensors, std::size_t* entries) {
  DriveFields fields(node, "a step");
  DriveScript::Step step;
  step.at = inMicroseconds(fields.requiredNumber("t_s", SECONDS));
  for (const VehicleSensor& sensor : vehicleSensors()) {
    const JsonNode* const value = fields.any(sensor.key);
    if (value == nullptr) continue;
    step.values.push_back({sensor.type, sensor.parse(*value, sensor.key)});
    sensors->insert(sensor.type);
    *entries += entriesIn(*value);
  }
  fields.finish();
  return step;
}

// The steps, in order; what each of them tells stands in `*loads`.
void parseSteps(const JsonNode& list, DriveScript* drive, std::vector<Load>* loads) {
  for (const JsonNode& node : list.items) {
    std::size_t entries = 0;
    DriveScript::Step step = parseStep(node, &drive->sensors, &entries);
    if (!drive->steps.empty() && step.at < drive->steps.back().at) {
      throw JsonProblem(node.line, "this step is earlier than the one before it");
    }
    loads->push_back({step.at, entries, node.line});
    drive->steps.push_back(std::move(step));
  }
}

DriveScript parse(const JsonNode& root) {
  DriveFields fields(root, "a drive");
  DriveScript drive;
  drive.loops = fields.flag("loop").value_or(true);
  const JsonNode* const lengthNode = fields.any("length_s");
  const std::optional<double> length = fields.number("length_s", SECONDS);
  const JsonNode* const steps = fields.list("steps");
  fields.finish();
  if (steps == nullptr || steps->items.empty())
    throw JsonProblem(steps == nullptr ? root.line : steps->line, "a drive needs \"steps\", one at least");
  std::vector<Load> loads;
  parseSteps(*steps, &drive, &loads);
  drive.length =
      length ? inMicroseconds(*length) : drive.steps.back().at + inMicroseconds(AFTER_THE_LAST_STEP);
  if (length && drive.length < std::max(SHORTEST, drive.steps.back().at)) {
    throw JsonProblem(lengthNode->line, "\"length_s\" must be 0.01 at least, and not before the last step");
  }
  refuseTooMuch(loads, drive);
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
  const std::optional<std::string> text = programs::readInput(path, FILE_LIMITS, error);
  if (!text) {
    *error = path + ": " + *error;
    return {};
  }
  std::optional<DriveScript> drive = parseDrive(*text, error);
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
