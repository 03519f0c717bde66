// Vehicle data, pushed for the sensors that were asked for.
#include <google/protobuf/repeated_ptr_field.h>

#include <set>

#include "phone/BatchedSensors.h"
#include "phone/verify/Probe.h"
#include "phone/verify/SensorRequests.h"

namespace phone::verify {

namespace {

Service sensors(Probe& probe) {
  return probe.find([](const Service& one) { return one.has_sensor_source_service(); }, "sensors");
}

std::vector<int> listedTypes(const Service& service) {
  std::vector<int> types;
  for (const auto& sensor : service.sensor_source_service().sensors()) types.push_back(sensor.sensor_type());
  if (types.empty()) throw NotOffered{"a sensor"};
  return types;
}

int askFor(Probe& probe, std::uint8_t channel, int type, std::int64_t period) {
  probe.link().sendMessage(channel, sensorRequest(type, period));
  return probe
      .await<SensorResponse>(channel, MESSAGE_SENSOR_RESPONSE,
                             "a SensorResponse for sensor " + std::to_string(type))
      .status();
}

// The types that batches have told since the check began.
std::set<int> toldTypes(Probe& probe, std::uint8_t channel) {
  std::set<int> told;
  while (const auto message = probe.awaitMaybe(channel, MESSAGE_SENSOR_BATCH, 0)) {
    const auto batch = message->as<SensorBatch>();
    Probe::expect(batch.has_value(), "a SensorBatch that parses", hex(message->bytes));
    for (const int type : sensorsIn(*batch)) told.insert(type);
  }
  return told;
}

void acceptsListed(Probe& probe) {
  const Service service = sensors(probe);
  const std::uint8_t channel = probe.open(service);
  for (const int type : listedTypes(service)) {
    const int status = askFor(probe, channel, type, 100);
    Probe::expect(status == STATUS_SUCCESS, "status 0 for sensor " + std::to_string(type),
                  std::to_string(status));
    askFor(probe, channel, type, -1);
  }
  probe.close(channel);
}

void respondsFirst(Probe& probe) {
  const Service service = sensors(probe);
  probe.freshUpLink();
  const std::uint8_t channel = probe.open(service);
  std::set<int> asked;
  for (const int type : listedTypes(service)) {
    askFor(probe, channel, type, 100);
    probe.settle();
    asked.insert(type);
    std::size_t responses = 0;
    for (const Message& message : probe.link().received(channel)) {
      if (message.type() == MESSAGE_SENSOR_RESPONSE) ++responses;
      const auto batch = message.type() == MESSAGE_SENSOR_BATCH ? message.as<SensorBatch>() : std::nullopt;
      if (!batch || responses == asked.size()) continue;
      Probe::expect(sensorsIn(*batch).count(type) == 0,
                    "the response ahead of the first value of sensor " + std::to_string(type),
                    "the value first");
    }
  }
}

void sendsOnlyRequested(Probe& probe) {
  const Service service = sensors(probe);
  probe.freshUpLink();
  const std::uint8_t channel = probe.open(service);
  probe.runUntil([&] { return probe.count(channel, MESSAGE_SENSOR_BATCH) > 0; }, 200'000);
  Probe::expect(probe.count(channel, MESSAGE_SENSOR_BATCH) == 0, "no values before any was asked for",
                probe.cameOn(channel));
  const int wanted = listedTypes(service).front();
  askFor(probe, channel, wanted, 0);
  probe.runUntil([] { return false; }, 200'000);
  for (const int type : toldTypes(probe, channel)) {
    Probe::expect(type == wanted, "values of sensor " + std::to_string(wanted) + " alone",
                  "one of sensor " + std::to_string(type));
  }
}

void stopsAtMinusOne(Probe& probe) {
  const Service service = sensors(probe);
  probe.freshUpLink();
  const std::uint8_t channel = probe.open(service);
  for (const int type : listedTypes(service)) askFor(probe, channel, type, 0);
  for (const int type : listedTypes(service)) {
    const int status = askFor(probe, channel, type, -1);
    Probe::expect(status == STATUS_SUCCESS, "status 0 to a stop", std::to_string(status));
  }
  probe.settle();
  toldTypes(probe, channel);
  probe.runUntil([&] { return false; }, 200'000);
  Probe::expect(toldTypes(probe, channel).empty(), "no values once all sensors are stopped", "some");
}

void refusesUnlisted(Probe& probe) {
  const Service service = sensors(probe);
  std::set<int> offered;
  for (const auto& sensor : service.sensor_source_service().sensors()) offered.insert(sensor.sensor_type());
  int missing = SENSOR_LOCATION;
  while (offered.count(missing) > 0) ++missing;
  if (missing > SENSOR_GPS_SATELLITE) throw NotOffered{"a sensor that is missing"};
  const std::uint8_t channel = probe.open(service);
  const int status = askFor(probe, channel, missing, 0);
  Probe::expect(status == STATUS_INVALID_SENSOR, "status -9", std::to_string(status));
  probe.close(channel);
}

void refusesNonsense(Probe& probe) {
  const std::uint8_t channel = probe.open(sensors(probe));
  probe.expectRefused(channel, sensorRequest(22, 0), "a request for sensor 22, which is none");
  probe.expectRefused(channel, sensorRequest(0, 0), "a request for sensor 0, which is none");
  probe.expectRefused(channel, messageBytes(MESSAGE_SENSOR_REQUEST, Bytes{0x08, 0x01}),
                      "a request without a period");
  probe.expectRefused(channel, messageBytes(MESSAGE_SENSOR_BATCH), "a SensorBatch");
  probe.expectRefused(channel, messageBytes(MESSAGE_SENSOR_RESPONSE), "a SensorResponse");
  probe.close(channel);
}

void fillsBatches(Probe& probe) {
  const Service service = sensors(probe);
  // On a link of its own: the second request of a sensor may bring the empty record that the first left.
  probe.freshUpLink();
  const std::uint8_t channel = probe.open(service);
  for (const int type : listedTypes(service)) askFor(probe, channel, type, 0);
  probe.runUntil([] { return false; }, 200'000);
  while (const auto message = probe.awaitMaybe(channel, MESSAGE_SENSOR_BATCH, 0)) {
    const auto batch = message->as<SensorBatch>();
    Probe::expect(batch.has_value(), "batches whose records are complete", hex(message->bytes));
    Probe::expect(batch->unknown_fields().empty(), "batches of known sensors", "an unknown field");
  }
  for (const int type : listedTypes(service)) askFor(probe, channel, type, -1);
  probe.close(channel);
}

}  // namespace

Checks sensorChecks() {
  return {
      {"sensor.listed", "Every listed sensor can be started and stopped.", acceptsListed},
      {"sensor.response-first", "The response travels ahead of the sensor's first value.", respondsFirst},
      {"sensor.only-requested", "Only sensors that were asked for send values.", sendsOnlyRequested},
      {"sensor.stop", "A period of -1 stops a sensor.", stopsAtMinusOne},
      {"sensor.complete", "Every record in a batch is whole and known.", fillsBatches},
      {"sensor.unlisted", "A sensor that is not listed is refused with status -9.", refusesUnlisted},
      {"sensor.refused", "Requests for no sensor, damaged and unknown messages are refused.",
       refusesNonsense},
  };
}

}  // namespace phone::verify
