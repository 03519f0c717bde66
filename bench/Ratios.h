#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

/// A figure and the bare baseline that it stands beside: what of the baseline's speed is left.
struct Ratio {
  std::string title;
  std::string measured;  ///< name of the benchmark
  std::string baseline;  ///< name of the baseline's
  double goal = 0;       ///< 0: none
};

/// Tells that each iteration of a benchmark was `batch` messages, so that tables show what one costs.
void perMessage(benchmark::State& state, int batch);

/// Prints the benchmarks as they run, keeps each one's median, and prints the ratios at the end.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override;

  /// A table on stdout.
  void printRatios(const std::vector<Ratio>& ratios) const;
  /// The same as JSON; false if the file cannot be written.
  bool writeRatios(const std::vector<Ratio>& ratios, const std::string& file) const;

 private:
  double median(const std::string& name) const;
  std::map<std::string, double> medians_;  // nanoseconds a message
};

/// Runs all registered benchmarks in random order, many times each, and prints the ratios. `--ratios=FILE`
/// writes them as JSON as well; everything else is Google Benchmark's.
int runWithRatios(int argc, char** argv, const std::vector<Ratio>& ratios);
