#include "phone/verify/TypeNames.h"

#include "phone/verify/Probe.h"

namespace phone::verify {

namespace {

std::string nameOn(const Service& service, int type) {
  if (service.has_media_sink_service() || service.has_media_source_service())
    return MediaMessageId_Name(type);
  if (service.has_sensor_source_service()) return SensorMessageId_Name(type);
  if (service.has_input_source_service()) return InputMessageId_Name(type);
  if (service.has_bluetooth_service()) return BluetoothMessageId_Name(type);
  if (service.has_radio_service()) return RadioMessageId_Name(type);
  if (service.has_navigation_status_service()) return NavigationStatusMessageId_Name(type);
  if (service.has_media_playback_service()) return MediaPlaybackStatusMessageId_Name(type);
  if (service.has_phone_status_service()) return PhoneStatusMessageId_Name(type);
  if (service.has_media_browser_service()) return MediaBrowserMessageId_Name(type);
  if (service.has_generic_notification_service()) return GenericNotificationMessageId_Name(type);
  if (service.vendor_extension_service().service_name() == verificationName)
    return VantryVerificationVendorExtensionMessageId_Name(type);
  return {};
}

}  // namespace

std::string typeName(int type, const Service* service) {
  std::string name = service != nullptr ? nameOn(*service, type) : "";
  // A few messages of the control channel travel on every other one, too.
  if (name.empty()) name = ControlMessageType_Name(type);
  return name.empty() ? hex(type) : name + " (" + hex(type) + ")";
}

}  // namespace phone::verify
