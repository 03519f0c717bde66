// What it costs to report a value to the phone, beside what it costs to serialize the same record alone. From
// the report to the frame as the writer gets it, without TLS, whose price link_bench tells.

#include <benchmark/benchmark.h>

#include <array>

#include "Ratios.h"
#include "Reports.h"
#include "ThreadClock.h"

namespace {

constexpr int BATCH = 256;  // reports between two looks at the clock

void reportToFrame(benchmark::State& state, const Report& report) {
  ReportingLink car;
  IoBuffer out;
  long frames = 0;
  for (auto _ : state) {
    const double start = now();
    for (int i = 0; i < BATCH; ++i) {
      report.send(car);
      for (int k = 0; k < report.messages; ++k) frames += car.link.receiver().getEncodedFrame(&out) ? 1 : 0;
    }
    state.SetIterationTime(secondsSince(start));
  }
  if (frames != static_cast<long>(state.iterations()) * BATCH * report.messages) {
    state.SkipWithError("frames were lost");
  }
  perMessage(state, BATCH);
}

template <class Record>
void serializeAlone(benchmark::State& state, const Bytes& body) {
  Record record;
  record.ParseFromArray(body.data(), static_cast<int>(body.size()));
  Bytes out(body.size());
  for (auto _ : state) {
    const double start = now();
    for (int i = 0; i < BATCH; ++i) {
      benchmark::DoNotOptimize(&record);
      benchmark::DoNotOptimize(record.ByteSizeLong());
      benchmark::DoNotOptimize(record.SerializePartialToArray(out.data(), static_cast<int>(out.size())));
      benchmark::ClobberMemory();
    }
    state.SetIterationTime(secondsSince(start));
  }
  if (out != body) state.SkipWithError("that is another record");
  perMessage(state, BATCH);
}

void serialize(benchmark::State& state, const Report& report) {
  ReportingLink car;
  report.send(car);
  Bytes body;
  for (int i = 0; i < report.messages; ++i) body = car.takeBody();
  if (report.record == Report::Record::sensorBatch) {
    serializeAlone<SensorBatch>(state, body);
  } else {
    serializeAlone<InputReport>(state, body);
  }
}

Ratio registered(const Report& report) {
  const std::string whole = std::string("report/") + report.name;
  const std::string alone = std::string("serialize/") + report.name;
  benchmark::RegisterBenchmark(whole.c_str(), [&report](benchmark::State& state) {
    reportToFrame(state, report);
  })->UseManualTime();
  benchmark::RegisterBenchmark(alone.c_str(), [&report](benchmark::State& state) {
    serialize(state, report);
  })->UseManualTime();
  return {std::string("report, ") + report.name + " / serializing", whole, alone};
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<Ratio> ratios;
  for (const Report& report : reports()) ratios.push_back(registered(report));
  return runWithRatios(argc, argv, ratios);
}
