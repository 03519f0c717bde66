// What the head unit says of itself and of its services.
#include <algorithm>
#include <functional>
#include <set>

#include "phone/verify/Probe.h"
#include "phone/verify/TypeNames.h"

namespace phone::verify {

namespace {

std::string serviceWords(const Service& service) { return "service " + std::to_string(service.id()); }

int kindsOf(const Service& service) {
  return service.has_sensor_source_service() + service.has_media_sink_service() +
         service.has_input_source_service() + service.has_media_source_service() +
         service.has_bluetooth_service() + service.has_radio_service() +
         service.has_navigation_status_service() + service.has_media_playback_service() +
         service.has_phone_status_service() + service.has_media_browser_service() +
         service.has_vendor_extension_service() + service.has_generic_notification_service();
}

template <class Numbers>
bool ascends(const Numbers& numbers) {
  return std::adjacent_find(numbers.begin(), numbers.end(), std::greater_equal<int>()) == numbers.end();
}

template <class Numbers>
std::string listed(const Numbers& numbers) {
  std::string words;
  for (const int number : numbers) words += (words.empty() ? "" : ", ") + std::to_string(number);
  return words;
}

void answersOnce(Probe& probe) {
  probe.freshUpLink();
  probe.settle();
  const std::size_t answers = probe.count(0, MESSAGE_SERVICE_DISCOVERY_RESPONSE);
  Probe::expect(answers == 1, "one ServiceDiscoveryResponse", std::to_string(answers));
}

void answersAgain(Probe& probe) {
  PhoneLink& link = probe.link();
  const std::string first = link.services()->SerializeAsString();
  link.sendServiceDiscoveryRequest();
  const auto again =
      probe.await<ServiceDiscoveryResponse>(0, MESSAGE_SERVICE_DISCOVERY_RESPONSE, "services again");
  Probe::expect(again.SerializeAsString() == first, "the same services as the first time", "others");
}

void tellsIdentity(Probe& probe) {
  const ServiceDiscoveryResponse& car = *probe.link().services();
  Probe::expect(car.has_make() && car.has_model() && car.has_year() && car.has_vehicle_id(),
                "make, model, year and vehicle_id, be they empty", "one of them is absent");
  Probe::expect(car.has_driver_position(), "driver_position", "it is absent");
  Probe::expect(car.has_head_unit_make() && car.has_head_unit_model() && car.has_head_unit_software_build() &&
                    car.has_head_unit_software_version(),
                "the four head_unit fields, be they empty", "one of them is absent");
}

void numbersServices(Probe& probe) {
  std::vector<int> ids;
  for (const Service& service : probe.services()) ids.push_back(service.id());
  Probe::expect(!ids.empty(), "at least one service", "none");
  Probe::expect(ascends(ids), "service ids in ascending order, none twice", listed(ids));
  Probe::expect(ids.front() > 0 && ids.back() < 255, "service ids from 1 to 254", listed(ids));
}

void givesOneKind(Probe& probe) {
  for (const Service& service : probe.services()) {
    Probe::expect(kindsOf(service) == 1, serviceWords(service) + " is of exactly one kind",
                  "it is of " + std::to_string(kindsOf(service)));
  }
}

void knowsOnlyItsFields(Probe& probe) {
  Probe::expect(probe.link().services()->unknown_fields().empty(), "no fields beyond those of discovery",
                "unknown fields");
  for (const Service& service : probe.services()) {
    Probe::expect(service.unknown_fields().empty(), serviceWords(service) + " has no unknown fields",
                  "it has some");
  }
}

void describesVideo(Probe& probe) {
  const Service video =
      probe.find([](const Service& service) { return service.media_sink_service().video_configs_size() > 0; },
                 "a picture");
  const MediaSinkService& sink = video.media_sink_service();
  Probe::expect(sink.has_available_type(), "available_type", "it is absent");
  Probe::expect(!sink.has_audio_type() && sink.audio_configs_size() == 0, "a picture's sink without sound",
                "audio fields");
  for (const VideoConfiguration& one : sink.video_configs()) {
    Probe::expect(one.has_codec_resolution() && one.has_frame_rate() && one.has_width_margin() &&
                      one.has_height_margin() && one.has_density(),
                  "all five fields in each video configuration", "one of them is absent");
  }
}

void describesAudio(Probe& probe) {
  bool any = false;
  for (const Service& service : probe.services()) {
    const MediaSinkService& sink = service.media_sink_service();
    if (!service.has_media_sink_service() || sink.video_configs_size() > 0) continue;
    any = true;
    Probe::expect(sink.has_available_type() && sink.has_audio_type(),
                  serviceWords(service) + " tells available_type and audio_type", "one of them is absent");
    Probe::expect(!sink.has_available_while_in_call(), "available_while_in_call left out", "it is present");
    for (const AudioConfiguration& one : sink.audio_configs()) {
      Probe::expect(one.sampling_rate() > 0 && one.number_of_bits() > 0 && one.number_of_channels() > 0,
                    "audio configurations that are possible", "a zero in one of " + serviceWords(service));
    }
  }
  if (!any) throw NotOffered{"sound"};
}

void sortsSensors(Probe& probe) {
  const Service service =
      probe.find([](const Service& one) { return one.has_sensor_source_service(); }, "sensors");
  std::vector<int> types;
  for (const auto& sensor : service.sensor_source_service().sensors()) types.push_back(sensor.sensor_type());
  Probe::expect(ascends(types), "sensor types in ascending order, none twice", listed(types));
}

void sortsKeycodes(Probe& probe) {
  const Service service =
      probe.find([](const Service& one) { return one.has_input_source_service(); }, "input");
  const auto& codes = service.input_source_service().keycodes_supported();
  Probe::expect(ascends(codes), "key codes in ascending order, none twice", listed(codes));
  Probe::expect(service.input_source_service().touchscreen_size() <= 1 &&
                    service.input_source_service().touchpad_size() <= 1,
                "at most one touch screen and one touch pad", "more");
}

void sortsPairingMethods(Probe& probe) {
  const Service service =
      probe.find([](const Service& one) { return one.has_bluetooth_service(); }, "Bluetooth");
  std::vector<int> methods;
  for (const int method : service.bluetooth_service().supported_pairing_methods()) methods.push_back(method);
  Probe::expect(ascends(methods), "pairing methods in ascending order, none twice", listed(methods));
}

void describesCluster(Probe& probe) {
  const Service service =
      probe.find([](const Service& one) { return one.has_navigation_status_service(); }, "navigation");
  const NavigationStatusService& cluster = service.navigation_status_service();
  const bool image = cluster.type() == NavigationStatusService_InstrumentClusterType_IMAGE;
  Probe::expect(
      image == cluster.has_image_options(),
      image ? "image_options for a cluster that shows images" : "no image_options for one that shows none",
      image ? "none" : "image_options");
}

void namesVerification(Probe& probe) {
  const Service service = probe.find(
      [](const Service& one) { return one.vendor_extension_service().service_name() == verificationName; },
      "the verification extension");
  const auto& list = service.vendor_extension_service().package_white_list();
  const std::vector<std::string> wanted = {"com.corvane.drovia.projection.spindrel.receivertest",
                                           "com.corvane.drovia.projection.localsink"};
  Probe::expect(std::vector<std::string>(list.begin(), list.end()) == wanted,
                wanted[0] + ", then " + wanted[1],
                list.empty() ? "an empty white list" : "a white list that begins with " + list[0]);
  Probe::expect(!service.vendor_extension_service().has_data(), "data left out", "it is present");
}

}  // namespace

Checks discoveryChecks() {
  return {
      {"discovery.once", "One request gets one response.", answersOnce},
      {"discovery.again", "A second request is answered too, with the same services.", answersAgain},
      {"discovery.identity", "The car's and the head unit's nine identity fields are all present.",
       tellsIdentity},
      {"discovery.ids", "Service ids ascend, are unique, and leave out 0 and 255.", numbersServices},
      {"discovery.one-kind", "Each service is of exactly one kind.", givesOneKind},
      {"discovery.known-fields", "The response holds no field that discovery does not know.",
       knowsOnlyItsFields},
      {"discovery.video", "A picture's sink tells all of each video configuration, and nothing of sound.",
       describesVideo},
      {"discovery.audio", "A sound's sink tells its stream type and formats that are possible.",
       describesAudio},
      {"discovery.sensors", "Sensor types are listed in ascending order, once each.", sortsSensors},
      {"discovery.keycodes", "Key codes are listed in ascending order, once each.", sortsKeycodes},
      {"discovery.pairing-methods", "Pairing methods are listed in ascending order, once each.",
       sortsPairingMethods},
      {"discovery.cluster", "Image sizes are told exactly when the cluster shows images.", describesCluster},
      {"discovery.verification", "The verification extension lists its two packages in order.",
       namesVerification},
  };
}

}  // namespace phone::verify
