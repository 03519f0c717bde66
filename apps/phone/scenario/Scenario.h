#ifndef PHONE_SCENARIO_SCENARIO_H
#define PHONE_SCENARIO_SCENARIO_H

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "phone/verify/LinkUnderTest.h"

namespace phone::scenario {

/// One thing to do, or to wait for. docs/scenarios.md tells how it is written.
struct Step {
  enum class Kind { open, close, send, expect, expectNone, wait };
  std::string name;
  Kind kind = Kind::wait;
  std::string service;       ///< A kind of service, a service id, or "control".
  int type = 0;              ///< Of the message.
  nlohmann::json fields;     ///< Of the record; null if they do not matter.
  std::optional<Bytes> raw;  ///< The body as it is, in place of fields.
  Micros within = 1'500'000;
};

struct Scenario {
  std::string name;
  std::string meaning;
  std::vector<Step> steps;
};

/// Reads a scenario. Empty, with a sentence on where and why in `error`, if it is none.
std::optional<Scenario> parseScenario(const std::string& text, std::string* error);

/// Those that come with the program.
std::vector<Scenario> builtInScenarios();

/// What a scenario came to.
struct Verdict {
  bool kept = true;
  std::string step;  ///< The name of the step that failed.
  std::string why;
};

/// Plays a scenario on one new link. `onStep` is called before each step.
Verdict play(const Scenario& scenario, verify::HeadUnit* headUnit, const Credentials& credentials,
             const std::function<void(const Step&)>& onStep = {});

}  // namespace phone::scenario

#endif
