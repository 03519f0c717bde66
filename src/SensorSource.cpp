#include "SensorSource.h"

#include "Message.h"
#include "SensorSlots.h"

// The phone's side of the service: what it is offered, what it requests, what it is sent. The host's side is
// in SensorReports.cpp.

namespace {

constexpr long long NOT_REQUESTED = -1;

/// Moves the parked value, if there is one, into `batch`. An empty record stays behind in its place, and goes
/// out at the next request unless a report fills it before.
template <class Value>
bool takeValue(const SensorSlot<Value>& slot, SensorBatch* parked, SensorBatch* batch) {
  google::protobuf::RepeatedPtrField<Value>* const values = slot.in(parked);
  if (values->empty()) return false;
  slot.in(batch)->Add()->Swap(values->Mutable(0));
  return true;
}

}  // namespace

SensorSource::SensorSource(int id, MessageRouter* messageRouter)
    : ProtocolEndpointBase(id, messageRouter, false) {
  for (std::atomic<long long>& period : minUpdatePeriods) period = NOT_REQUESTED;
}

SensorSource::~SensorSource() = default;

void SensorSource::registerSensor(int type) { sensors.insert(type); }

void SensorSource::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  SensorSourceService* const source = service->mutable_sensor_source_service();
  for (const int type : sensors) source->add_sensors()->set_sensor_type(static_cast<SensorType>(type));
}

int SensorSource::routeMessage(unsigned char, unsigned short type, const shared_ptr<IoBuffer>& message) {
  switch (type) {
    case MESSAGE_SENSOR_REQUEST: return handleRecord(this, message, &SensorSource::handleSensorRequest);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}

int SensorSource::handleSensorRequest(const SensorRequest& request) {
  const int type = request.type();
  if (sensors.count(type) == 0 || type < 1 || type > SensorType_MAX) {
    sendSensorResponse(STATUS_INVALID_SENSOR);
    return STATUS_INVALID_SENSOR;
  }
  minUpdatePeriods[type - 1] = request.min_update_period();
  SensorBatch batch;
  const bool valueToSend = isLive(type) && takeParkedValue(type, &batch);
  sendSensorResponse(STATUS_SUCCESS);
  if (valueToSend) sendSensorBatch(batch);
  return STATUS_SUCCESS;
}

bool SensorSource::isLive(int type) const { return minUpdatePeriods[type - 1] != NOT_REQUESTED; }

bool SensorSource::takeParkedValue(int type, SensorBatch* batch) {
  Autolock guard(&lock);
  return std::apply(
      [&](const auto&... slots) {
        return ((slots.type == type && takeValue(slots, &lastValues, batch)) || ...);
      },
      SENSOR_SLOTS);
}

void SensorSource::sendSensorResponse(int status) {
  SensorResponse response;
  response.set_status(static_cast<MessageStatus>(status));
  sendRecord(MESSAGE_SENSOR_RESPONSE, response);
}

void SensorSource::sendSensorBatch(const SensorBatch& batch) { sendRecord(MESSAGE_SENSOR_BATCH, batch); }

void SensorSource::tick(unsigned long long) {}
