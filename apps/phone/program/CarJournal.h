#ifndef PHONE_PROGRAM_CARJOURNAL_H
#define PHONE_PROGRAM_CARJOURNAL_H

#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "phone/CarListener.h"
#include "phone/Socket.h"
#include "phone/Timers.h"

namespace phone {

/// Tells the user what the car says, and keeps it in a file: one JSON object a line, with the time since the
/// start, the kind of message and its fields by name. A line is in the file as soon as it was heard.
class CarJournal : public CarListener {
 public:
  /// Creates or replaces the file, or begins to write into the pipe, if somebody reads it: nobody is waited
  /// for. Otherwise false, and `error` tells why.
  bool recordTo(const std::string& path, std::string* error);
  /// False once a line could not be written.
  bool isWhole() const { return isWhole_; }

  /// Counts time by `timers`, which are there as long as something is heard, from now on.
  void start(const Timers* timers);

  void onSensorBatch(const SensorBatch& batch) override;
  void onInputReport(const InputReport& report) override;

 private:
  void record(const char* message, nlohmann::ordered_json fields);

  const Timers* timers_ = nullptr;
  Micros started_ = 0;
  Socket file_;
  bool isWhole_ = true;
  std::set<std::string> told_;  ///< Sensors of which the user has seen a value.
};

}  // namespace phone

#endif
