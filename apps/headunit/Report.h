#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "headunit/AudioStream.h"
#include "headunit/Controls.h"
#include "headunit/LinkEnd.h"
#include "headunit/LinkStats.h"
#include "headunit/MicrophoneFeed.h"
#include "headunit/services/ServiceTotals.h"

namespace headunit {

/// What is known of a link once it has ended.
struct LinkRecord {
  std::shared_ptr<LinkStats> stats;
  LinkEnd end;
  std::uint64_t bytesRead = 0;
  std::uint64_t bytesWritten = 0;
  microseconds duration{0};
  std::vector<std::pair<std::string, AudioTotals>> sounds;  ///< by name of the stream
  MicrophoneTotals microphone;
  ControlTotals controls;
  std::uint64_t sensorReports = 0;
  ServiceTotals services;
};

/// As it goes into the statistics file: JSON with one value or one brace a line, each duration and rate with
/// its unit at the end of its name.
std::string toJson(const LinkRecord& record);

/// What came by the services of the cluster, in one line; empty if the phone opened none of them.
std::string inWords(const ServiceTotals& totals);

/// Returns false, with the reason in `*error`, if the file cannot be written whole.
bool writeReport(const LinkRecord& record, const std::string& path, std::string* error);

}  // namespace headunit
