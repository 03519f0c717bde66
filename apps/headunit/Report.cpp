#include "headunit/Report.h"

#include <nlohmann/json.hpp>

#include "headunit/OutputFile.h"

namespace headunit {
namespace {

using Json = nlohmann::ordered_json;

double seconds(microseconds duration) { return static_cast<double>(duration.count()) / 1e6; }
double milli(microseconds duration) { return static_cast<double>(duration.count()) / 1e3; }

Json spread(const Latency& latency) {
  if (latency.count == 0) return nullptr;
  return {{"p50", latency.p50.count()},
          {"p99", latency.p99.count()},
          {"max", latency.longest.count()},
          {"count", latency.count}};
}

Json linkFigures(const LinkRecord& record) {
  const std::optional<microseconds> handshake = record.stats->handshake();
  return {{"handshake_ms", handshake ? Json(milli(*handshake)) : Json(nullptr)},
          {"duration_s", seconds(record.duration)},
          {"bytes_received", record.bytesRead},
          {"bytes_sent", record.bytesWritten},
          {"ping_us", spread(record.stats->pings())}};
}

Json videoFigures(const LinkStats& stats) {
  const VideoTotals totals = stats.totals();
  const double streamed = seconds(stats.streamed());
  const bool ran = totals.frames > 1 && streamed > 0;
  return {{"frames", totals.frames},
          {"bytes", totals.bytes},
          {"decoded", totals.decoded},
          {"shown", totals.shown},
          {"dropped", totals.dropped},
          {"damaged", totals.damaged},
          {"refused", totals.refused},
          {"width", totals.width},
          {"height", totals.height},
          {"seconds", streamed},
          {"frames_per_s", ran ? Json(static_cast<double>(totals.frames - 1) / streamed) : Json(nullptr)},
          {"mbit_per_s", ran ? Json(static_cast<double>(totals.bytes) * 8 / 1e6 / streamed) : Json(nullptr)}};
}

Json soundFigures(const LinkRecord& record) {
  Json figures;
  std::uint64_t underruns = 0;
  for (const auto& [name, totals] : record.sounds) underruns += totals.underruns;
  figures["underruns"] = underruns;
  for (const auto& [name, totals] : record.sounds) {
    figures[name] = {{"blocks", totals.blocks},
                     {"bytes", totals.bytes},
                     {"underruns", totals.underruns},
                     {"refused", totals.refused},
                     {"waited_p50_us", totals.waitedP50.count()},
                     {"waited_p99_us", totals.waitedP99.count()}};
  }
  return figures;
}

Json microphoneFigures(const MicrophoneTotals& totals) {
  return {
      {"blocks", totals.blocks}, {"held_back", totals.heldBack}, {"most_unacknowledged", totals.mostUnacked}};
}

Json controlFigures(const LinkRecord& record) {
  const ControlTotals& totals = record.controls;
  return {{"touches", totals.touches},
          {"keys", totals.keys},
          {"turns", totals.turns},
          {"touch_to_picture_us", spread(record.stats->touches())}};
}

Json serviceFigures(const ServiceTotals& totals) {
  return {
      {"pairing",
       {{"opened", totals.pairingOpened},
        {"requests", totals.pairingRequests},
        {"delayed", totals.pairingsDelayed},
        {"accepted", totals.pairingsAccepted},
        {"refused", totals.pairingsRefused}}},
      {"radio",
       {{"opened", totals.radioOpened}, {"commands", totals.radioCommands}, {"scans", totals.radioScans}}},
      {"navigation",
       {{"opened", totals.navigationOpened}, {"turns", totals.turns}, {"distances", totals.distances}}},
      {"playback",
       {{"opened", totals.playbackOpened}, {"states", totals.playbackStates}, {"songs", totals.songs}}},
      {"phone", {{"opened", totals.phoneOpened}, {"states", totals.phoneStates}, {"calls", totals.calls}}},
      {"browser",
       {{"opened", totals.browserOpened},
        {"pages", totals.browserPages},
        {"actions", totals.browserActions}}},
      {"notification",
       {{"opened", totals.notificationOpened},
        {"shown", totals.notificationsShown},
        {"dismissed", totals.notificationsDismissed},
        {"sent", totals.notificationsSent},
        {"acknowledged", totals.notificationsAcknowledged}}},
      {"echo", {{"opened", totals.echoOpened}, {"messages", totals.echoes}}},
      {"images_decoded", totals.images},
      {"keys", totals.keys}};
}

Json latencyFigures(const VideoLatencies& latencies) {
  return {{"socket_to_received", spread(latencies.socketToReceived)},
          {"received_to_dequeued", spread(latencies.receivedToDequeued)},
          {"dequeued_to_decoded", spread(latencies.dequeuedToDecoded)},
          {"socket_to_decoded", spread(latencies.socketToDecoded)},
          {"decoded_to_shown", spread(latencies.decodedToShown)}};
}

}  // namespace

std::string toJson(const LinkRecord& record) {
  Json figures;
  figures["link"] = linkFigures(record);
  figures["video"] = videoFigures(*record.stats);
  figures["latency_us"] = latencyFigures(record.stats->latencies());
  figures["sound"] = soundFigures(record);
  figures["microphone"] = microphoneFigures(record.microphone);
  figures["input"] = controlFigures(record);
  figures["sensors"] = {{"reports", record.sensorReports}};
  figures["services"] = serviceFigures(record.services);
  figures["end"] = {{"clean", record.end.clean}, {"words", record.end.words()}};
  // The words may hold what a phone made up; that must not make the file unwritable.
  return figures.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string inWords(const ServiceTotals& totals) {
  const std::uint64_t opened = totals.pairingOpened + totals.radioOpened + totals.navigationOpened +
                               totals.playbackOpened + totals.phoneOpened + totals.browserOpened +
                               totals.notificationOpened + totals.echoOpened;
  if (opened == 0) return "";
  const std::pair<const char*, std::uint64_t> parts[] = {{"turns", totals.turns},
                                                         {"songs", totals.songs},
                                                         {"calls", totals.calls},
                                                         {"pages of the list", totals.browserPages},
                                                         {"notifications", totals.notificationsShown},
                                                         {"requests to the tuner", totals.radioCommands},
                                                         {"pairings accepted", totals.pairingsAccepted},
                                                         {"refused", totals.pairingsRefused}};
  std::string words;
  for (const auto& [what, count] : parts) {
    words += (words.empty() ? "" : ", ") + std::string(what) + " " + std::to_string(count);
  }
  return words;
}

bool writeReport(const LinkRecord& record, const std::string& path, std::string* error) {
  return writeFile(path, toJson(record), error);
}

}  // namespace headunit
