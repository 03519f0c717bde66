#include "headunit/VehicleSensors.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "headunit/DriveFields.h"

namespace headunit {
namespace {

constexpr Range LATITUDE{-90, 90, "degrees"};
constexpr Range LONGITUDE{-180, 180, "degrees"};
constexpr Range BEARING{0, 360, "degrees"};
constexpr Range TILT{-180, 180, "degrees"};
constexpr Range SPEED{-200, 600, "km/h"};
constexpr Range TEMPERATURE{-100, 100, "degrees Celsius"};

constexpr double KMH_IN_MPS = 1 / 3.6;

/// A value that a report may leave out.
struct Maybe {
  bool has = false;
  int value = 0;
};

/// The physical value times ten to the `exponent`.
int fixedPoint(double value, int exponent) {
  return static_cast<int>(std::lround(value * std::pow(10, exponent)));
}

Maybe fixedPoint(const std::optional<double>& value, int exponent) {
  return value ? Maybe{true, fixedPoint(*value, exponent)} : Maybe{};
}

std::vector<int> fixedPoint(const std::vector<double>& values, int exponent) {
  std::vector<int> results;
  for (const double value : values) results.push_back(fixedPoint(value, exponent));
  return results;
}

std::optional<double> inMps(const std::optional<double>& kmh) {
  return kmh ? std::optional<double>(*kmh * KMH_IN_MPS) : std::nullopt;
}

unsigned long long microsecondsNow() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<unsigned long long>(std::chrono::duration_cast<microseconds>(now).count());
}

VehicleReport parseLocation(const JsonNode& value, const std::string& key) {
  DriveFields fields(value, key);
  const int latitude = fixedPoint(fields.requiredNumber("latitude_deg", LATITUDE), 7);
  const int longitude = fixedPoint(fields.requiredNumber("longitude_deg", LONGITUDE), 7);
  const Maybe accuracy = fixedPoint(fields.number("accuracy_m", {0, 1e6, "m"}), 3);
  const Maybe altitude = fixedPoint(fields.number("altitude_m", {-1000, 20'000, "m"}), 2);
  const Maybe speed = fixedPoint(inMps(fields.number("speed_kmh", SPEED)), 3);
  const Maybe bearing = fixedPoint(fields.number("bearing_deg", BEARING), 6);
  fields.finish();
  return [=](SensorSource* sensors) {
    sensors->reportLocationData(microsecondsNow(), latitude, longitude, accuracy.has, accuracy.value,
                                altitude.has, altitude.value, speed.has, speed.value, bearing.has,
                                bearing.value);
  };
}

VehicleReport parseCompass(const JsonNode& value, const std::string& key) {
  DriveFields fields(value, key);
  const int bearing = fixedPoint(fields.requiredNumber("bearing_deg", BEARING), 6);
  const Maybe pitch = fixedPoint(fields.number("pitch_deg", TILT), 6);
  const Maybe roll = fixedPoint(fields.number("roll_deg", TILT), 6);
  fields.finish();
  return [=](SensorSource* sensors) {
    sensors->reportCompassData3D(bearing, pitch.has, pitch.value, roll.has, roll.value);
  };
}

VehicleReport parseSpeed(const JsonNode& value, const std::string& key) {
  const int speed = fixedPoint(numberIn(value, key, SPEED) * KMH_IN_MPS, 3);
  return [=](SensorSource* sensors) { sensors->reportSpeedData(speed); };
}

VehicleReport parseRpm(const JsonNode& value, const std::string& key) {
  const int rpm = fixedPoint(numberIn(value, key, {0, 100'000, "1/min"}), 3);
  return [=](SensorSource* sensors) { sensors->reportRpmData(rpm); };
}

VehicleReport parseOdometer(const JsonNode& value, const std::string& key) {
  const int kilometres = fixedPoint(numberIn(value, key, {0, 1e8, "km"}), 1);
  return [=](SensorSource* sensors) { sensors->reportOdometerData(kilometres); };
}

VehicleReport parseFuel(const JsonNode& value, const std::string& key) {
  DriveFields fields(value, key);
  const Maybe level = fixedPoint(fields.number("level_percent", {0, 100, "%"}), 0);
  const Maybe range = fixedPoint(fields.number("range_km", {0, 10'000, "km"}), 0);
  const std::optional<bool> low = fields.flag("low");
  fields.finish();
  return [=](SensorSource* sensors) {
    sensors->reportFuelData(level.has, level.value, range.has, range.value, low.has_value(),
                            low.value_or(false));
  };
}

VehicleReport parseParkingBrake(const JsonNode& value, const std::string& key) {
  const bool on = flagIn(value, key);
  return [=](SensorSource* sensors) { sensors->reportParkingBrakeData(on); };
}

VehicleReport parseGear(const JsonNode& value, const std::string& key) {
  static const std::vector<std::string> words = {"neutral", "1", "2",     "3",    "4",
                                                 "5",       "6", "drive", "park", "reverse"};
  static constexpr int gears[] = {GEAR_0, GEAR_1, GEAR_2,   GEAR_3,   GEAR_4,
                                  GEAR_5, GEAR_6, GEAR_100, GEAR_101, GEAR_102};
  const int gear = gears[wordIn(value, key, words)];
  return [=](SensorSource* sensors) { sensors->reportGearData(gear); };
}

VehicleReport parseDiagnostics(const JsonNode& value, const std::string& key) {
  std::vector<unsigned char> codes;
  for (const double number : numbersIn(value, key, {0, 255, ""}))
    codes.push_back(static_cast<unsigned char>(number));
  return [codes](SensorSource* sensors) mutable {
    sensors->reportDiagnosticsData(codes.data(), static_cast<unsigned int>(codes.size()));
  };
}

VehicleReport parseNightMode(const JsonNode& value, const std::string& key) {
  const bool night = flagIn(value, key);
  return [=](SensorSource* sensors) { sensors->reportNightModeData(night); };
}

VehicleReport parseEnvironment(const JsonNode& value, const std::string& key) {
  DriveFields fields(value, key);
  const Maybe temperature = fixedPoint(fields.number("temperature_c", TEMPERATURE), 3);
  const Maybe pressure = fixedPoint(fields.number("pressure_kpa", {0, 200, "kPa"}), 3);
  fields.finish();
  return [=](SensorSource* sensors) {
    sensors->reportEnvironmentData(temperature.has, temperature.value, pressure.has, pressure.value);
  };
}

VehicleReport parseHvac(const JsonNode& value, const std::string& key) {
  DriveFields fields(value, key);
  const Maybe target = fixedPoint(fields.number("target_c", TEMPERATURE), 3);
  const Maybe current = fixedPoint(fields.number("current_c", TEMPERATURE), 3);
  fields.finish();
  return [=](SensorSource* sensors) {
    sensors->reportHvacData(target.has, target.value, current.has, current.value);
  };
}

VehicleReport parseDrivingStatus(const JsonNode& value, const std::string& key) {
  const int status = fixedPoint(numberIn(value, key, {0, 31, ""}), 0);
  return [=](SensorSource* sensors) { sensors->reportDrivingStatusData(status); };
}

VehicleReport parseDeadReckoning(const JsonNode& value, const std::string& key) {
  DriveFields fields(value, key);
  const Maybe steering = fixedPoint(fields.number("steering_angle_deg", {-1800, 1800, "degrees"}), 1);
  std::vector<double> wheels;
  if (const JsonNode* const list = fields.any("wheel_speeds_kmh"))
    wheels = numbersIn(*list, "wheel_speeds_kmh", SPEED);
  fields.finish();
  for (double& wheel : wheels) wheel *= KMH_IN_MPS;
  return [=, speeds = fixedPoint(wheels, 3)](SensorSource* sensors) {
    sensors->reportDeadReckoningData(steering.has, steering.value, speeds.data(),
                                     static_cast<int>(speeds.size()));
  };
}

VehicleReport parsePassenger(const JsonNode& value, const std::string& key) {
  const bool present = flagIn(value, key);
  return [=](SensorSource* sensors) { sensors->reportPassengerData(present); };
}

VehicleReport parseDoors(const JsonNode& value, const std::string& key) {
  DriveFields fields(value, key);
  const std::optional<bool> hood = fields.flag("hood");
  const std::optional<bool> trunk = fields.flag("trunk");
  std::vector<bool> doors;
  if (const JsonNode* const list = fields.any("open")) doors = flagsIn(*list, "open");
  fields.finish();
  const std::shared_ptr<bool[]> open(new bool[doors.size() + 1]);
  std::copy(doors.begin(), doors.end(), open.get());
  return [=, count = static_cast<int>(doors.size())](SensorSource* sensors) {
    sensors->reportDoorData(hood.has_value(), hood.value_or(false), trunk.has_value(), trunk.value_or(false),
                            open.get(), count);
  };
}

VehicleReport parseLights(const JsonNode& value, const std::string& key) {
  DriveFields fields(value, key);
  Maybe head;
  Maybe indicator;
  if (const JsonNode* const word = fields.any("head")) {
    head = {true, HEAD_LIGHT_STATE_1 + static_cast<int>(wordIn(*word, "head", {"off", "on", "high"}))};
  }
  if (const JsonNode* const word = fields.any("indicator")) {
    indicator = {true, TURN_INDICATOR_STATE_1 +
                           static_cast<int>(wordIn(*word, "indicator", {"off", "left", "right"}))};
  }
  const std::optional<bool> hazard = fields.flag("hazard");
  fields.finish();
  return [=](SensorSource* sensors) {
    sensors->reportLightData(head.has, head.value, indicator.has, indicator.value, hazard.has_value(),
                             hazard.value_or(false));
  };
}

VehicleReport parseTires(const JsonNode& value, const std::string& key) {
  return [pressures = fixedPoint(numbersIn(value, key, {0, 2000, "kPa"}), 2)](SensorSource* sensors) {
    sensors->reportTirePressureData(pressures.data(), static_cast<int>(pressures.size()));
  };
}

/// The three axes of an accelerometer or a gyroscope.
struct Axes {
  Maybe x, y, z;

  Axes(const JsonNode& value, const std::string& key, const Range& range) {
    DriveFields fields(value, key);
    x = fixedPoint(fields.number("x", range), 3);
    y = fixedPoint(fields.number("y", range), 3);
    z = fixedPoint(fields.number("z", range), 3);
    fields.finish();
  }
};

VehicleReport parseAccelerometer(const JsonNode& value, const std::string& key) {
  const Axes axes(value, key, {-1000, 1000, "m/s2"});
  return [=](SensorSource* sensors) {
    sensors->reportAccelerometerData(axes.x.has, axes.x.value, axes.y.has, axes.y.value, axes.z.has,
                                     axes.z.value);
  };
}

VehicleReport parseGyroscope(const JsonNode& value, const std::string& key) {
  const Axes axes(value, key, {-1000, 1000, "rad/s"});
  return [=](SensorSource* sensors) {
    sensors->reportGyroscopeData(axes.x.has, axes.x.value, axes.y.has, axes.y.value, axes.z.has,
                                 axes.z.value);
  };
}

/// All satellites in view, one array for each of their properties.
struct Satellites {
  std::vector<int> prns;
  std::vector<int> snrs;
  std::vector<char> used;
  std::vector<int> azimuths;
  std::vector<int> elevations;

  void add(const JsonNode& value) {
    DriveFields fields(value, "a satellite");
    prns.push_back(fixedPoint(fields.requiredNumber("prn", {0, 1000, ""}), 0));
    snrs.push_back(fixedPoint(fields.requiredNumber("snr_db", {0, 100, "dB"}), 3));
    used.push_back(fields.flag("used").value_or(false) ? 1 : 0);
    azimuths.push_back(fixedPoint(fields.requiredNumber("azimuth_deg", BEARING), 3));
    elevations.push_back(fixedPoint(fields.requiredNumber("elevation_deg", {-90, 90, "degrees"}), 3));
    fields.finish();
  }

  int inUse() const { return static_cast<int>(std::count(used.begin(), used.end(), 1)); }

  void reportTo(SensorSource* sensors) const {
    const std::unique_ptr<bool[]> flags(new bool[used.size() + 1]);
    std::transform(used.begin(), used.end(), flags.get(), [](char flag) { return flag != 0; });
    sensors->reportGpsSatelliteData(inUse(), true, static_cast<int>(prns.size()), prns.data(), snrs.data(),
                                    flags.get(), azimuths.data(), elevations.data());
  }
};

VehicleReport parseSatellites(const JsonNode& value, const std::string& key) {
  if (value.kind != JsonNode::Kind::list) throw JsonProblem(value.line, "\"" + key + "\" must be a list");
  Satellites satellites;
  for (const JsonNode& item : value.items) satellites.add(item);
  return [satellites](SensorSource* sensors) { satellites.reportTo(sensors); };
}

}  // namespace

const std::vector<VehicleSensor>& vehicleSensors() {
  static const std::vector<VehicleSensor> sensors = {
      {"location", SENSOR_LOCATION, parseLocation},
      {"compass", SENSOR_COMPASS, parseCompass},
      {"speed_kmh", SENSOR_SPEED, parseSpeed},
      {"rpm", SENSOR_RPM, parseRpm},
      {"odometer_km", SENSOR_ODOMETER, parseOdometer},
      {"fuel", SENSOR_FUEL, parseFuel},
      {"parking_brake", SENSOR_PARKING_BRAKE, parseParkingBrake},
      {"gear", SENSOR_GEAR, parseGear},
      {"diagnostics", SENSOR_DIAGNOSTICS, parseDiagnostics},
      {"night_mode", SENSOR_NIGHT_MODE, parseNightMode},
      {"environment", SENSOR_ENVIRONMENT, parseEnvironment},
      {"hvac", SENSOR_HVAC, parseHvac},
      {"driving_status", SENSOR_DRIVING_STATUS, parseDrivingStatus},
      {"dead_reckoning", SENSOR_DEAD_RECKONING, parseDeadReckoning},
      {"passenger", SENSOR_PASSENGER, parsePassenger},
      {"doors", SENSOR_DOOR, parseDoors},
      {"lights", SENSOR_LIGHT, parseLights},
      {"tires_kpa", SENSOR_TIRE_PRESSURE, parseTires},
      {"accelerometer_mps2", SENSOR_ACCELEROMETER, parseAccelerometer},
      {"gyroscope_radps", SENSOR_GYROSCOPE, parseGyroscope},
      {"satellites", SENSOR_GPS_SATELLITE, parseSatellites}};
  return sensors;
}

}  // namespace headunit
