#include "phone/program/Stats.h"

#include <nlohmann/json.hpp>

#include "phone/Statistics.h"

namespace phone {

namespace {

using Json = nlohmann::ordered_json;

Json milliseconds(std::optional<Micros> time) {
  return time ? Json(static_cast<double>(*time) / 1000.0) : Json(nullptr);
}

Json videoFigures(const MediaStream& video) {
  const StreamStats& stats = video.stats();
  const double seconds = static_cast<double>(stats.finished - stats.started) / 1e6;
  const bool ran = stats.units > 0 && seconds > 0;
  Json figures;
  figures["frames_sent"] = stats.units;
  figures["frames_acknowledged"] = stats.acknowledged;
  figures["bytes_sent"] = stats.bytes;
  figures["seconds"] = ran ? Json(seconds) : Json(nullptr);
  figures["frames_per_second"] = ran ? Json(static_cast<double>(stats.units) / seconds) : Json(nullptr);
  figures["megabytes_per_second"] = ran ? Json(static_cast<double>(stats.bytes) / seconds / 1e6) : Json(nullptr);
  figures["max_unacked"] = video.maxUnacked();
  figures["most_unacknowledged"] = stats.mostUnacknowledged;
  figures["ack_latency_p50_ms"] = milliseconds(percentile(stats.ackLatencies, 50));
  figures["ack_latency_p99_ms"] = milliseconds(percentile(stats.ackLatencies, 99));
  return figures;
}

}  // namespace

std::string statsJson(const PhoneSession& session, int exitStatus) {
  const LinkEnd end = session.outcome();
  Json figures;
  figures["handshake_ms"] = milliseconds(session.handshakeTime());
  figures["video"] = session.video() != nullptr ? videoFigures(*session.video()) : Json(nullptr);
  figures["end"] = {{"clean", end.clean}, {"words", end.words()}, {"exit_status", exitStatus}};
  // Texts of the peer's making may hold anything; they must not make the file unwritable.
  return figures.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace phone
