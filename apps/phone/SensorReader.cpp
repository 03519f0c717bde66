#include "phone/SensorReader.h"

namespace phone {

namespace {

// How many records of each sensor a batch holds; index 0 is the sensor of type 1.
std::array<int, 21> countsOf(const SensorBatch& batch) {
  return {batch.location_data_size(),       batch.compass_data_size(),
          batch.speed_data_size(),          batch.rpm_data_size(),
          batch.odometer_data_size(),       batch.fuel_data_size(),
          batch.parking_brake_data_size(),  batch.gear_data_size(),
          batch.diagnostics_data_size(),    batch.night_mode_data_size(),
          batch.environment_data_size(),    batch.hvac_data_size(),
          batch.driving_status_data_size(), batch.dead_reckoning_data_size(),
          batch.passenger_data_size(),      batch.door_data_size(),
          batch.light_data_size(),          batch.tire_pressure_data_size(),
          batch.accelerometer_data_size(),  batch.gyroscope_data_size(),
          batch.gps_satellite_data_size()};
}

}  // namespace

SensorReader::~SensorReader() {
  if (channel_ != 0) link_->attach(channel_, nullptr);
}

void SensorReader::open(std::uint8_t channel, const Service& service) {
  channel_ = channel;
  sensors_ = service.sensor_source_service();
  link_->openChannel(channel, service.id(), this);
}

void SensorReader::onOpened() {
  for (const SensorSourceService_Sensor& sensor : sensors_.sensors()) {
    SensorRequest request;
    request.set_type(sensor.sensor_type());
    request.set_min_update_period(0);
    link_->send(channel_, MESSAGE_SENSOR_REQUEST, request);
    ++stats_.requested;
    stats_.messages[sensor.sensor_type()];
  }
}

void SensorReader::onMessage(const Message& message) {
  switch (message.type()) {
    case MESSAGE_SENSOR_RESPONSE: return onResponse(message);
    case MESSAGE_SENSOR_BATCH: return onBatch(message);
    default: return;
  }
}

void SensorReader::onResponse(const Message& message) {
  const auto response = message.as<SensorResponse>();
  if (!response) {
    ++stats_.damaged;
  } else if (response->status() == STATUS_SUCCESS) {
    ++stats_.granted;
  } else {
    ++stats_.refused;
  }
}

// A value that was told before may come as an empty record, required fields included: that is no damage.
void SensorReader::onBatch(const Message& message) {
  SensorBatch batch;
  if (!batch.ParsePartialFromArray(message.body(), static_cast<int>(message.bodySize()))) {
    ++stats_.damaged;
    return;
  }
  ++stats_.batches;
  const auto counts = countsOf(batch);
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] > 0) ++stats_.messages[static_cast<SensorType>(i + 1)];
  }
  if (listener_ != nullptr) listener_->onSensorBatch(batch);
}

}  // namespace phone
