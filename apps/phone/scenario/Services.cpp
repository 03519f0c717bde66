#include "phone/scenario/Services.h"

#include <algorithm>
#include <iterator>

#include "phone/verify/TypeNames.h"

namespace phone::scenario {

namespace {

using verify::verificationName;

struct Kind {
  const char* name;
  bool (*holds)(const Service& service);
};

constexpr Kind kinds[] = {
    {"video", [](const Service& one) { return one.media_sink_service().video_configs_size() > 0; }},
    {"audio",
     [](const Service& one) {
       return one.has_media_sink_service() && one.media_sink_service().video_configs_size() == 0;
     }},
    {"microphone", [](const Service& one) { return one.has_media_source_service(); }},
    {"sensors", [](const Service& one) { return one.has_sensor_source_service(); }},
    {"input", [](const Service& one) { return one.has_input_source_service(); }},
    {"bluetooth", [](const Service& one) { return one.has_bluetooth_service(); }},
    {"radio", [](const Service& one) { return one.has_radio_service(); }},
    {"navigation", [](const Service& one) { return one.has_navigation_status_service(); }},
    {"playback", [](const Service& one) { return one.has_media_playback_service(); }},
    {"phone", [](const Service& one) { return one.has_phone_status_service(); }},
    {"browser", [](const Service& one) { return one.has_media_browser_service(); }},
    {"notifications", [](const Service& one) { return one.has_generic_notification_service(); }},
    {"vendor", [](const Service& one) { return one.has_vendor_extension_service(); }},
    {"verification",
     [](const Service& one) { return one.vendor_extension_service().service_name() == verificationName; }},
};

const Kind* findKind(const std::string& name) {
  const auto* found = std::find_if(std::begin(kinds), std::end(kinds),
                                   [&name](const Kind& kind) { return name == kind.name; });
  return found != std::end(kinds) ? found : nullptr;
}

}  // namespace

bool isServiceName(const std::string& name) {
  const bool isId = !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
  return isId || name == "control" || findKind(name) != nullptr;
}

bool isCalled(const Service& service, const std::string& name) {
  const Kind* kind = findKind(name);
  return kind != nullptr ? kind->holds(service) : name == std::to_string(service.id());
}

}  // namespace phone::scenario
