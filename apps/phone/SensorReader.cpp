#include "phone/SensorReader.h"

#include "phone/BatchedSensors.h"

namespace phone {

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
  for (const int type : sensorsIn(batch)) ++stats_.messages[static_cast<SensorType>(type)];
  if (listener_ != nullptr) listener_->onSensorBatch(batch);
}

}  // namespace phone
