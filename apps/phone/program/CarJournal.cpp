#include "phone/program/CarJournal.h"

#include <spdlog/spdlog.h>

#include <utility>

#include "phone/RecordJson.h"
#include "phone/program/OutputFile.h"

namespace phone {

bool CarJournal::recordTo(const std::string& path, std::string* error) {
  file_ = openToWrite(path, error);
  return static_cast<bool>(file_);
}

void CarJournal::start(const Timers* timers) {
  timers_ = timers;
  started_ = timers->now();
}

// Sensors come in floods: without --verbose the user sees the first value of each.
void CarJournal::onSensorBatch(const SensorBatch& batch) {
  nlohmann::ordered_json fields = toJson(batch);
  for (const auto& [sensor, values] : fields.items()) {
    const bool isNew = told_.insert(sensor).second;
    spdlog::log(isNew ? spdlog::level::info : spdlog::level::debug, "{}: {}", sensor, values.dump());
  }
  record("sensor_batch", std::move(fields));
}

void CarJournal::onInputReport(const InputReport& report) {
  nlohmann::ordered_json fields = toJson(report);
  const bool isMove = report.has_touch_event() && report.touch_event().action() == POINTER_ACTION_2;
  spdlog::log(isMove ? spdlog::level::debug : spdlog::level::info, "input: {}", fields.dump());
  record("input_report", std::move(fields));
}

void CarJournal::record(const char* message, nlohmann::ordered_json fields) {
  if (!file_ || !isWhole_) return;
  nlohmann::ordered_json line;
  line["time_ms"] = static_cast<double>(timers_->now() - started_) / 1000.0;
  line["message"] = message;
  line.update(fields);
  // Whole lines at once: the file can be followed while it grows, and a full disk shows at the line it met.
  isWhole_ = writeAll(file_, line.dump() + "\n");
}

}  // namespace phone
