#include "ForgetUnknownFields.h"

namespace {

template <class Records>
void forgetInEach(Records* records) {
  for (auto& record : *records) forgetUnknownFields(&record);
}

}  // namespace

void forgetUnknownFields(PhoneStatus* status) {
  forgetOwnUnknownFields(status);
  forgetInEach(status->mutable_calls());
}

void forgetUnknownFields(MediaRootNode* node) {
  forgetOwnUnknownFields(node);
  forgetInEach(node->mutable_media_sources());
}

void forgetUnknownFields(MediaSourceNode* node) {
  forgetOwnUnknownFields(node);
  if (node->has_source()) forgetUnknownFields(node->mutable_source());
  forgetInEach(node->mutable_lists());
}

void forgetUnknownFields(MediaListNode* node) {
  forgetOwnUnknownFields(node);
  if (node->has_list()) forgetUnknownFields(node->mutable_list());
  forgetInEach(node->mutable_songs());
}

void forgetUnknownFields(MediaSongNode* node) {
  forgetOwnUnknownFields(node);
  if (node->has_song()) forgetUnknownFields(node->mutable_song());
}

void forgetUnknownFields(SensorBatch* batch) {
  forgetOwnUnknownFields(batch);
  forgetInEach(batch->mutable_location_data());
  forgetInEach(batch->mutable_compass_data());
  forgetInEach(batch->mutable_speed_data());
  forgetInEach(batch->mutable_rpm_data());
  forgetInEach(batch->mutable_odometer_data());
  forgetInEach(batch->mutable_fuel_data());
  forgetInEach(batch->mutable_parking_brake_data());
  forgetInEach(batch->mutable_gear_data());
  forgetInEach(batch->mutable_diagnostics_data());
  forgetInEach(batch->mutable_night_mode_data());
  forgetInEach(batch->mutable_environment_data());
  forgetInEach(batch->mutable_hvac_data());
  forgetInEach(batch->mutable_driving_status_data());
  forgetInEach(batch->mutable_dead_reckoning_data());
  forgetInEach(batch->mutable_passenger_data());
  forgetInEach(batch->mutable_door_data());
  forgetInEach(batch->mutable_light_data());
  forgetInEach(batch->mutable_tire_pressure_data());
  forgetInEach(batch->mutable_accelerometer_data());
  forgetInEach(batch->mutable_gyroscope_data());
  forgetInEach(batch->mutable_gps_satellite_data());
}

void forgetUnknownFields(GpsSatelliteData* data) {
  forgetOwnUnknownFields(data);
  forgetInEach(data->mutable_satellites());
}

void forgetUnknownFields(InputReport* report) {
  forgetOwnUnknownFields(report);
  if (report->has_touch_event()) forgetUnknownFields(report->mutable_touch_event());
  if (report->has_key_event()) forgetUnknownFields(report->mutable_key_event());
  if (report->has_absolute_event()) forgetUnknownFields(report->mutable_absolute_event());
  if (report->has_relative_event()) forgetUnknownFields(report->mutable_relative_event());
  if (report->has_touchpad_event()) forgetUnknownFields(report->mutable_touchpad_event());
}

void forgetUnknownFields(TouchEvent* event) {
  forgetOwnUnknownFields(event);
  forgetInEach(event->mutable_pointer_data());
}

void forgetUnknownFields(KeyEvent* event) {
  forgetOwnUnknownFields(event);
  forgetInEach(event->mutable_keys());
}

void forgetUnknownFields(AbsoluteEvent* event) {
  forgetOwnUnknownFields(event);
  forgetInEach(event->mutable_data());
}

void forgetUnknownFields(RelativeEvent* event) {
  forgetOwnUnknownFields(event);
  forgetInEach(event->mutable_data());
}

void forgetUnknownFields(VantryVerificationSetSensor* message) {
  forgetOwnUnknownFields(message);
  if (message->has_sensors()) forgetUnknownFields(message->mutable_sensors());
}

void forgetUnknownFields(VantryVerificationInjectInput* message) {
  forgetOwnUnknownFields(message);
  if (message->has_input()) forgetUnknownFields(message->mutable_input());
}
