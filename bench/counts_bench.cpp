// What frames and reports cost the heap, and how often a payload is copied. Counted on plain frames, so that
// what OpenSSL does for itself stays out of the sums.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "AllocationCount.h"
#include "Reports.h"

namespace {

constexpr unsigned int SIZE = 16128;  // of a payload
constexpr int TURNS = 1000;           // each first one fills pools and deques, which hardly shows

/// A line of the table: what one frame or one report costs.
struct Line {
  std::string title;
  Costs costs;
};

Costs costsOfEach(double count, const std::function<void()>& work) {
  Costs costs = countCosts(SIZE, work);
  costs.allocations /= count;
  costs.copies /= count;
  return costs;
}

Line receivedWhole() {
  BenchLink link(BenchLink::Security::plain, 1);
  const Bytes frame = link.mediaFrame(1, SIZE);
  Costs costs = costsOfEach(TURNS, [&] {
    for (int i = 0; i < TURNS; ++i) link.receive(frame);
  });
  costs.copies -= 1;  // the transport's own, into the buffer
  return {"per received frame, whole message", costs};
}

Line receivedFragments() {
  constexpr int FRAGMENTS = 4;
  BenchLink link(BenchLink::Security::plain, 1);
  const std::vector<Bytes> frames = link.mediaFragments(1, FRAGMENTS * SIZE);
  Costs costs = costsOfEach(TURNS * FRAGMENTS, [&] {
    for (int i = 0; i < TURNS; ++i) {
      for (const Bytes& frame : frames) link.receive(frame);
    }
  });
  costs.copies -= 1;
  return {"per received frame, fragment of four", costs};
}

/// Each of a report's frames into a buffer that had its size before: a writer's buffer is made anew for each
/// other size, whatever is sent.
void takeFrames(BenchLink* link, int count) {
  static IoBuffer outs[2];
  for (int i = 0; i < count; ++i) {
    if (!link->receiver().getEncodedFrame(&outs[i])) exit(2);
  }
}

Line sent() {
  BenchLink link(BenchLink::Security::plain, 1);
  Bytes message(SIZE, 0);
  const auto send = [&] {
    link.receiver().messageRouter()->queueOutgoing(1, message.data(), SIZE);
    takeFrames(&link, 1);
  };
  send();  // gives the writer's buffer its size
  return {"per sent frame", costsOfEach(TURNS, [&] {
            for (int i = 0; i < TURNS; ++i) send();
          })};
}

/// Without what its frame costs like any other.
Line reported(const Report& report, double allocationsOfAFrame) {
  ReportingLink car;
  const auto send = [&] {
    report.send(car);
    takeFrames(&car.link, report.messages);
  };
  send();
  Costs costs = costsOfEach(TURNS, [&] {
    for (int i = 0; i < TURNS; ++i) send();
  });
  costs.allocations -= report.messages * allocationsOfAFrame;
  return {std::string("per report, its frame apart: ") + report.name, costs};
}

void print(const std::vector<Line>& lines) {
  printf("\n%-50s %12s %8s\n", "", "allocations", "copies");
  for (const Line& line : lines) {
    printf("%-50s %12.2f %8.2f\n", line.title.c_str(), line.costs.allocations, line.costs.copies);
  }
}

bool write(const std::vector<Line>& lines, const char* file) {
  const std::unique_ptr<FILE, int (*)(FILE*)> out(fopen(file, "w"), fclose);
  if (!out) return false;
  const char* separator = "[";
  for (const Line& line : lines) {
    fprintf(out.get(), "%s\n  {\"title\": \"%s\", \"allocations\": %.3f, \"copies\": %.3f}", separator,
            line.title.c_str(), line.costs.allocations, line.costs.copies);
    separator = ",";
  }
  fprintf(out.get(), "\n]\n");
  return true;
}

}  // namespace

/// Options other than `--ratios=FILE` are those of the programs that time.
int main(int argc, char** argv) {
  std::vector<Line> lines = {receivedWhole(), receivedFragments(), sent()};
  const double allocationsOfAFrame = lines.back().costs.allocations;
  for (const Report& report : reports()) lines.push_back(reported(report, allocationsOfAFrame));
  print(lines);
  for (int i = 1; i < argc; ++i) {
    if (strncmp(argv[i], "--ratios=", 9) == 0 && !write(lines, argv[i] + 9)) {
      fprintf(stderr, "cannot write %s\n", argv[i] + 9);
      return 1;
    }
  }
  return 0;
}
