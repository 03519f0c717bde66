#include "phone/verify/Runner.h"

#include <algorithm>

#include "phone/Socket.h"

namespace phone::verify {

namespace {

bool lacksLink(const Result& result) {
  return result.expected == "a link that comes up" || result.expected == "a way to the head unit";
}

// Counts the links in a row that came to nothing.
class DeadLinks {
 public:
  explicit DeadLinks(int most) : most_(most) {}

  void take(const Result& result, bool isSilent) {
    const bool failed = result.outcome == Outcome::failed;
    silent_ = failed && isSilent ? silent_ + 1 : 0;
    dead_ = failed && (isSilent || lacksLink(result)) ? dead_ + 1 : 0;
    last_ = result.came;
  }

  /// Why the run is to be broken off; empty if it is not.
  std::string reason() const {
    if (dead_ < most_) return {};
    const std::string count = std::to_string(dead_);
    if (silent_ < most_) return "no link came up " + count + " times in a row, last: " + last_;
    return "not a byte came on " + count + " links in a row; what is there is no head unit, or hangs";
  }

 private:
  int most_;
  int dead_ = 0;
  int silent_ = 0;
  std::string last_;
};

Result runOne(const Check& check, Probe& probe, bool keepLink) {
  Result result;
  result.name = check.name;
  result.meaning = check.meaning;
  const Micros start = steadyNow();
  try {
    probe.beginCheck(keepLink);
    check.run(probe);
  } catch (const Mismatch& mismatch) {
    result.outcome = Outcome::failed;
    result.expected = mismatch.expected;
    result.came = mismatch.came;
  } catch (const NotOffered& missing) {
    result.outcome = Outcome::skipped;
    result.expected = missing.what;
  } catch (const Interrupted&) {
    result.outcome = Outcome::notRun;
    result.expected = "interrupted";
  }
  result.took = steadyNow() - start;
  return result;
}

}  // namespace

std::size_t Run::count(Outcome outcome) const {
  return static_cast<std::size_t>(std::count_if(
      results.begin(), results.end(), [outcome](const Result& result) { return result.outcome == outcome; }));
}

const Result* Run::find(const std::string& name) const {
  for (const Result& result : results) {
    if (result.name == name) return &result;
  }
  return nullptr;
}

Run runChecks(const Checks& checks, HeadUnit* headUnit, const Credentials& credentials,
              const OnResult& onResult, const Endurance& endurance) {
  Probe probe(headUnit, credentials, endurance.firstByte);
  DeadLinks dead(endurance.deadLinks);
  Run run;
  bool keepLink = true;
  for (const Check& check : checks) {
    Result result = run.brokenOff.empty()
                        ? runOne(check, probe, keepLink)
                        : Result{check.name, check.meaning, Outcome::notRun, run.brokenOff, "", 0};
    keepLink = result.outcome != Outcome::failed;
    if (result.outcome == Outcome::notRun) {
      run.brokenOff = result.expected;
    } else {
      dead.take(result, probe.isSilent());
      run.brokenOff = dead.reason();
    }
    if (onResult) onResult(result);
    run.results.push_back(std::move(result));
  }
  return run;
}

Checks choose(const Checks& checks, const std::vector<std::string>& prefixes) {
  if (prefixes.empty()) return checks;
  Checks chosen;
  for (const Check& check : checks) {
    const std::string name = check.name;
    const bool wanted = std::any_of(prefixes.begin(), prefixes.end(), [&name](const std::string& prefix) {
      return name.compare(0, prefix.size(), prefix) == 0;
    });
    if (wanted) chosen.push_back(check);
  }
  return chosen;
}

Checks allChecks() {
  Checks all;
  for (const Checks& some :
       {bringUpChecks(), discoveryChecks(), controlChecks(), channelChecks(), videoChecks(), audioChecks(),
        microphoneChecks(), sensorChecks(), inputChecks(), carServiceChecks(), clusterServiceChecks(),
        vendorChecks(), verificationChecks(), frameChecks()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

}  // namespace phone::verify
