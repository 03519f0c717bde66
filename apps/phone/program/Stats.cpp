#include "phone/program/Stats.h"

#include <nlohmann/json.hpp>

#include "phone/Discovery.h"
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
  figures["megabytes_per_second"] =
      ran ? Json(static_cast<double>(stats.bytes) / seconds / 1e6) : Json(nullptr);
  figures["max_unacked"] = video.maxUnacked();
  figures["most_unacknowledged"] = stats.mostUnacknowledged;
  figures["ack_latency_p50_ms"] = milliseconds(percentile(stats.ackLatencies, 50));
  figures["ack_latency_p99_ms"] = milliseconds(percentile(stats.ackLatencies, 99));
  return figures;
}

// Empty where nothing was offered or wanted: a reader finds every name at the same place in every file.
Json soundFigures(const SoundPlayer& sounds) {
  Json figures = Json::object();
  for (const auto& voice : sounds.voices()) {
    const StreamStats& stats = voice->stream->stats();
    Json& stream = figures[nameOf(voice->type)];
    stream["messages_sent"] = stats.units;
    stream["messages_acknowledged"] = stats.acknowledged;
    stream["bytes_sent"] = stats.bytes;
    stream["max_unacked"] = voice->stream->maxUnacked();
    stream["most_unacknowledged"] = stats.mostUnacknowledged;
    stream["ack_latency_p50_ms"] = milliseconds(percentile(stats.ackLatencies, 50));
    stream["ack_latency_p99_ms"] = milliseconds(percentile(stats.ackLatencies, 99));
  }
  return figures;
}

Json microphoneFigures(const Microphone& microphone) {
  const MicrophoneStats& stats = microphone.stats();
  return {{"messages", stats.messages}, {"bytes", stats.bytes}, {"damaged", stats.damaged}};
}

Json sensorFigures(const SensorReader& sensors) {
  const SensorStats& stats = sensors.stats();
  Json messages = Json::object();
  std::size_t delivered = 0;
  for (const auto& [type, count] : stats.messages) {
    messages[nameOf(type)] = count;
    if (count > 0) ++delivered;
  }
  return {{"requested", stats.requested}, {"granted", stats.granted}, {"refused", stats.refused},
          {"delivered", delivered},       {"batches", stats.batches}, {"damaged", stats.damaged},
          {"messages", messages}};
}

Json inputFigures(const InputReader& input) {
  const InputStats& stats = input.stats();
  return {{"keycodes_bound", stats.bound}, {"reports", stats.reports},   {"keys", stats.keys},
          {"absolute", stats.absolute},    {"relative", stats.relative}, {"touchpad", stats.touchpad},
          {"damaged", stats.damaged}};
}

Json touchFigures(const TouchStats& stats) {
  return {{"received", stats.received},
          {"shown", stats.shown},
          {"latency_p50_ms", milliseconds(percentile(stats.latencies, 50))},
          {"latency_p99_ms", milliseconds(percentile(stats.latencies, 99))}};
}

// Null where there is none of `part`.
template <class Part>
Json orNull(const Part* part, Json (*figuresOf)(const Part&)) {
  return part != nullptr ? figuresOf(*part) : Json(nullptr);
}

}  // namespace

std::string statsJson(const PhoneSession* session, const LinkEnd& end, int exitStatus) {
  const CarServices* car = session != nullptr ? &session->car() : nullptr;
  Json figures;
  figures["handshake_ms"] = milliseconds(session != nullptr ? session->handshakeTime() : std::nullopt);
  figures["video"] = orNull(session != nullptr ? session->video() : nullptr, videoFigures);
  figures["audio"] = session != nullptr ? soundFigures(session->sounds()) : Json::object();
  figures["microphone"] = orNull(car != nullptr ? car->microphone() : nullptr, microphoneFigures);
  figures["sensors"] = orNull(car != nullptr ? car->sensors() : nullptr, sensorFigures);
  figures["input"] = orNull(car != nullptr ? car->input() : nullptr, inputFigures);
  figures["touches"] = touchFigures(car != nullptr ? car->touches().stats() : TouchStats());
  figures["troubles"] = session != nullptr ? session->troubles().size() : 0;
  figures["violations"] = session != nullptr ? session->violations() : 0;
  figures["end"] = {{"clean", end.clean}, {"words", end.words()}, {"exit_status", exitStatus}};
  // Texts of the peer's making may hold anything; they must not make the file unwritable.
  return figures.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace phone
