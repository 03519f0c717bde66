#include "Ratios.h"

#include <cstdio>
#include <cstring>
#include <memory>

namespace {

constexpr const char* PER_MESSAGE = "ns/message";

}  // namespace

void perMessage(benchmark::State& state, int batch) {
  const double messages = static_cast<double>(state.iterations()) * batch;
  state.SetItemsProcessed(static_cast<std::int64_t>(messages));
  state.counters[PER_MESSAGE] =
      benchmark::Counter(messages * 1e-9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
      medians_[run.run_name.function_name + (run.run_name.args.empty() ? "" : "/" + run.run_name.args)] =
          run.counters.at(PER_MESSAGE);
    }
  }
  ConsoleReporter::ReportRuns(runs);
}

double RatioReporter::median(const std::string& name) const {
  const auto found = medians_.find(name);
  return found == medians_.end() ? 0 : found->second;
}

void RatioReporter::printRatios(const std::vector<Ratio>& ratios) const {
  printf("\n%-46s %12s %12s %8s %6s\n", "", "measured ns", "baseline ns", "ratio", "goal");
  for (const Ratio& ratio : ratios) {
    const double measured = median(ratio.measured);
    const double baseline = median(ratio.baseline);
    if (measured <= 0 || baseline <= 0) continue;  // filtered out of this run
    printf("%-46s %12.0f %12.0f %8.2f ", ratio.title.c_str(), measured, baseline, baseline / measured);
    if (ratio.goal > 0) {
      printf("%6.2f\n", ratio.goal);
    } else {
      printf("%6s\n", "-");
    }
  }
}

bool RatioReporter::writeRatios(const std::vector<Ratio>& ratios, const std::string& file) const {
  const std::unique_ptr<FILE, int (*)(FILE*)> out(fopen(file.c_str(), "w"), fclose);
  if (!out) return false;
  const char* separator = "[";
  for (const Ratio& ratio : ratios) {
    const double measured = median(ratio.measured);
    const double baseline = median(ratio.baseline);
    if (measured <= 0 || baseline <= 0) continue;
    fprintf(out.get(),
            "%s\n  {\"title\": \"%s\", \"measured_ns\": %.1f, \"baseline_ns\": %.1f, \"ratio\": %.4f, "
            "\"goal\": %.2f}",
            separator, ratio.title.c_str(), measured, baseline, baseline / measured, ratio.goal);
    separator = ",";
  }
  fprintf(out.get(), "\n]\n");
  return true;
}

int runWithRatios(int argc, char** argv, const std::vector<Ratio>& ratios) {
  std::string ratioFile;
  std::vector<char*> arguments;
  // Random interleaving spreads the machine's bad moments over both sides of a ratio.
  std::string interleave = "--benchmark_enable_random_interleaving=true";
  std::string repetitions = "--benchmark_repetitions=15";
  std::string leastTime = "--benchmark_min_time=0.1";
  arguments.push_back(argv[0]);
  arguments.push_back(leastTime.data());
  arguments.push_back(interleave.data());
  arguments.push_back(repetitions.data());
  for (int i = 1; i < argc; ++i) {
    if (strncmp(argv[i], "--ratios=", 9) == 0) {
      ratioFile = argv[i] + 9;
    } else {
      arguments.push_back(argv[i]);
    }
  }
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.printRatios(ratios);
  if (!ratioFile.empty() && !reporter.writeRatios(ratios, ratioFile)) {
    fprintf(stderr, "cannot write %s\n", ratioFile.c_str());
    return 1;
  }
  return 0;
}
