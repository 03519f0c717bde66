#include "phone/scenario/Scenario.h"

#include <set>
#include <stdexcept>

#include "phone/scenario/Services.h"
#include "phone/scenario/WireFields.h"

namespace phone::scenario {

namespace {

using nlohmann::json;

[[noreturn]] void refuse(const std::string& why) { throw std::invalid_argument(why); }

// A message type by its name or its number.
int typeOf(const json& value) {
  if (value.is_number_integer() && value.get<int>() >= 0 && value.get<int>() <= 0xffff)
    return value.get<int>();
  if (!value.is_string()) refuse("\"type\" is a message's name or number");
  const std::string name = value.get<std::string>();
  const auto find = [&name](auto parse, auto example) -> std::optional<int> {
    auto found = example;
    return parse(name, &found) ? std::optional<int>(found) : std::nullopt;
  };
  for (const auto& found :
       {find(ControlMessageType_Parse, ControlMessageType()), find(MediaMessageId_Parse, MediaMessageId()),
        find(SensorMessageId_Parse, SensorMessageId()), find(InputMessageId_Parse, InputMessageId()),
        find(BluetoothMessageId_Parse, BluetoothMessageId()), find(RadioMessageId_Parse, RadioMessageId()),
        find(NavigationStatusMessageId_Parse, NavigationStatusMessageId()),
        find(MediaPlaybackStatusMessageId_Parse, MediaPlaybackStatusMessageId()),
        find(PhoneStatusMessageId_Parse, PhoneStatusMessageId()),
        find(MediaBrowserMessageId_Parse, MediaBrowserMessageId()),
        find(GenericNotificationMessageId_Parse, GenericNotificationMessageId()),
        find(VantryVerificationVendorExtensionMessageId_Parse,
             VantryVerificationVendorExtensionMessageId())}) {
    if (found) return *found;
  }
  refuse("there is no message " + name);
}

Micros millisecondsOf(const json& value, const char* name) {
  if (!value.is_number_integer() || value.get<std::int64_t>() < 0 || value.get<std::int64_t>() > 60'000) {
    refuse(std::string("\"") + name + "\" is a number of milliseconds up to 60000");
  }
  return value.get<Micros>() * 1000;
}

std::string serviceOf(const json& value) {
  if (!value.is_string() && !value.is_number_unsigned()) refuse("a service is a kind or an id");
  const std::string name = value.is_string() ? value.get<std::string>() : value.dump();
  if (!isServiceName(name)) refuse("there is no service \"" + name + "\"");
  return name;
}

void allow(const json& object, const std::set<std::string>& names) {
  if (!object.is_object()) refuse("an object belongs here, not " + object.dump());
  for (const auto& item : object.items()) {
    if (names.count(item.key()) == 0) refuse("\"" + item.key() + "\" means nothing here");
  }
}

void readMessage(const json& object, Step* step) {
  allow(object, {"on", "type", "fields", "hex", "within_ms"});
  if (!object.contains("on") || !object.contains("type")) refuse("\"on\" and \"type\" are needed");
  step->service = serviceOf(object.at("on"));
  step->type = typeOf(object.at("type"));
  if (object.contains("fields")) step->fields = object.at("fields");
  if (object.contains("hex")) step->raw = bytesOfHex(object.at("hex").get<std::string>());
  if (object.contains("within_ms")) step->within = millisecondsOf(object.at("within_ms"), "within_ms");
  if (!step->fields.is_null()) encodeFields(step->fields);
}

Step readStep(const json& object, std::size_t number) {
  Step step;
  allow(object, {"name", "open", "close", "send", "expect", "expect_none", "wait_ms"});
  const std::size_t named = object.contains("name") ? 1 : 0;
  if (object.size() != named + 1) refuse("a step does exactly one thing");
  step.name = named == 1 ? object.at("name").get<std::string>() : "step " + std::to_string(number);
  if (object.contains("open") || object.contains("close")) {
    step.kind = object.contains("open") ? Step::Kind::open : Step::Kind::close;
    step.service = serviceOf(object.at(object.contains("open") ? "open" : "close"));
  } else if (object.contains("wait_ms")) {
    step.within = millisecondsOf(object.at("wait_ms"), "wait_ms");
  } else {
    const char* kind = object.contains("send")     ? "send"
                       : object.contains("expect") ? "expect"
                                                   : "expect_none";
    step.kind = object.contains("send")     ? Step::Kind::send
                : object.contains("expect") ? Step::Kind::expect
                                            : Step::Kind::expectNone;
    readMessage(object.at(kind), &step);
  }
  return step;
}

Scenario readScenario(const json& document) {
  allow(document, {"name", "meaning", "steps"});
  Scenario scenario;
  scenario.name = document.value("name", "unnamed");
  scenario.meaning = document.value("meaning", "");
  if (!document.contains("steps") || !document.at("steps").is_array()) refuse("\"steps\" is a list");
  for (const json& step : document.at("steps")) {
    const std::size_t number = scenario.steps.size() + 1;
    try {
      scenario.steps.push_back(readStep(step, number));
    } catch (const std::exception& failure) {
      refuse("step " + std::to_string(number) + ": " + failure.what());
    }
  }
  if (scenario.steps.empty()) refuse("there are no steps");
  return scenario;
}

// What reads and writes fields goes down into them, and a file must not decide how deep.
json parseShallow(const std::string& text) {
  constexpr int mostLevels = 64;
  std::size_t step = 0;
  bool inSteps = false;
  const auto look = [&](int depth, json::parse_event_t event, json& parsed) {
    const bool starts =
        event == json::parse_event_t::object_start || event == json::parse_event_t::array_start;
    if (event == json::parse_event_t::key && depth == 1) inSteps = parsed == "steps";
    if (inSteps && depth == 2 && (starts || event == json::parse_event_t::value)) ++step;
    if (!starts || depth < mostLevels) return true;
    const std::string where = inSteps && step > 0 ? "step " + std::to_string(step) + ": " : "";
    refuse(where + "lists and objects stand in each other more than " + std::to_string(mostLevels) +
           " levels deep");
  };
  return json::parse(text, look);
}

constexpr const char* builtIn[] = {
    R"({"name": "link", "meaning": "Ping, focus, and a message that must be refused.", "steps": [
      {"name": "ping", "send": {"on": "control", "type": "MESSAGE_PING_REQUEST", "fields": {"1": 4711}}},
      {"name": "pong", "expect": {"on": "control", "type": "MESSAGE_PING_RESPONSE", "fields": {"1": 4711}}},
      {"name": "ask for audio focus", "send": {"on": "control", "type": "MESSAGE_AUDIO_FOCUS_REQUEST_NOTIFICATION", "fields": {"1": 1}}},
      {"name": "audio focus is told", "expect": {"on": "control", "type": "MESSAGE_AUDIO_FOCUS_NOTIFICATION", "fields": {"2": false}}},
      {"name": "send what nobody knows", "send": {"on": "control", "type": 100, "hex": ""}},
      {"name": "it is refused", "expect": {"on": "control", "type": "MESSAGE_UNEXPECTED_MESSAGE"}}]})",
    R"({"name": "pairing", "meaning": "A phone asks to be paired.", "steps": [
      {"name": "open Bluetooth", "open": "bluetooth"},
      {"name": "ask to be paired", "send": {"on": "bluetooth", "type": "MESSAGE_BLUETOOTH_PAIRING_REQUEST", "fields": {"1": "02:00:00:5e:77:01", "2": 1}}},
      {"name": "the answer", "expect": {"on": "bluetooth", "type": "MESSAGE_BLUETOOTH_PAIRING_RESPONSE", "within_ms": 3000}}]})",
    R"({"name": "radio", "meaning": "Tuning outside any band, and a scan.", "steps": [
      {"name": "open the radio", "open": "radio"},
      {"name": "tune to 1 Hz", "send": {"on": "radio", "type": "MESSAGE_RADIO_SET_STATION_REQUEST", "fields": {"1": 1}}},
      {"name": "that is refused", "expect": {"on": "radio", "type": "MESSAGE_RADIO_SET_STATION_RESPONSE", "fields": {"1": -19}}},
      {"name": "scan upwards", "send": {"on": "radio", "type": "MESSAGE_RADIO_SCAN_REQUEST", "fields": {"1": true}}},
      {"name": "the scan ends", "expect": {"on": "radio", "type": "MESSAGE_RADIO_SCAN_COMPLETE_NOTIFICATION", "within_ms": 5000}},
      {"name": "close it", "close": "radio"}]})",
    R"({"name": "guidance", "meaning": "A turn and its distance, taken without a word of refusal.", "steps": [
      {"name": "open navigation", "open": "navigation"},
      {"name": "guidance runs", "send": {"on": "navigation", "type": "MESSAGE_NAVIGATION_STATUS", "fields": {"1": 1}}},
      {"name": "a turn", "send": {"on": "navigation", "type": "MESSAGE_NAVIGATION_NEXT_TURN_EVENT", "fields": {"1": "Mill Lane", "2": 2, "3": 4}}},
      {"name": "its distance", "send": {"on": "navigation", "type": "MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT", "fields": {"1": 180, "2": 12}}},
      {"name": "no refusal", "expect_none": {"on": "navigation", "type": "MESSAGE_UNEXPECTED_MESSAGE", "within_ms": 300}}]})",
};

// The name that the JSON reader gives its complaint tells a user nothing.
std::string inWords(std::string complaint) {
  const std::size_t begin = complaint.find("[json.exception.");
  const std::size_t end = begin == std::string::npos ? begin : complaint.find("] ", begin);
  return end == std::string::npos ? complaint : complaint.erase(begin, end + 2 - begin);
}

}  // namespace

std::optional<Scenario> parseScenario(const std::string& text, std::string* error) {
  try {
    return readScenario(parseShallow(text));
  } catch (const std::exception& failure) {
    *error = inWords(failure.what());
    return std::nullopt;
  }
}

std::vector<Scenario> builtInScenarios() {
  std::vector<Scenario> scenarios;
  for (const char* text : builtIn) scenarios.push_back(readScenario(json::parse(text)));
  return scenarios;
}

}  // namespace phone::scenario
