#include "phone/program/ScenarioCommand.h"

#include <CLI/CLI.hpp>
#include <cstdio>

#include "common/InputFile.h"
#include "phone/program/Files.h"
#include "phone/program/Peer.h"
#include "phone/program/Usage.h"
#include "phone/scenario/Scenario.h"

namespace phone {

namespace {

constexpr int exitKept = 0;
constexpr int exitUsage = 1;
constexpr int exitBroken = 3;

struct ScenarioOptions {
  Peer peer;
  std::string credentials = "credentials";
  std::string scenario;
  bool list = false;
};

void describe(CLI::App* app, ScenarioOptions* options) {
  auto* what = app->add_option_group("Scenario", "what is played");
  // The value may be missing: "--help" in its place is no name.
  what->add_option("--scenario", options->scenario, "play this file, or the built-in scenario of this name")
      ->expected(0, 1)
      ->type_name("NAME|FILE.json");
  what->add_flag("--list-scenarios", options->list, "list the built-in scenarios");
  what->require_option(1);
  addPeer(app, &options->peer, "a head unit that connects")->require_option(0, 1);
  addCredentials(app, &options->credentials);
  app->footer(
      "Exit status: 0 if all went as written, 1 for wrong usage, 3 if an expectation failed or the "
      "scenario was interrupted.");
}

int complain(const std::string& what) {
  std::fprintf(stderr, "phone: %s\n", what.c_str());
  return exitUsage;
}

int list() {
  for (const auto& one : scenario::builtInScenarios())
    std::printf("%-10s  %s\n", one.name.c_str(), one.meaning.c_str());
  return exitKept;
}

std::optional<scenario::Scenario> find(const std::string& name, std::string* error) {
  for (auto& one : scenario::builtInScenarios()) {
    if (one.name == name) return one;
  }
  programs::InputLimits limits;
  limits.bytes = 16 << 20;
  std::string reason;
  const auto text = programs::readInput(name, limits, &reason);
  if (!text) {
    *error = "cannot read " + name + ": " + reason +
             "; no built-in scenario has that name either, --list-scenarios tells them";
    return std::nullopt;
  }
  auto read = scenario::parseScenario(*text, error);
  if (!read) *error = name + ": " + *error;
  return read;
}

int play(const ScenarioOptions& options, const scenario::Scenario& wanted, const Credentials& credentials,
         Wake* wake) {
  std::string error;
  const auto headUnit = headUnitAt(options.peer, wake, &error);
  if (!headUnit) return complain(error);
  const auto verdict = scenario::play(wanted, headUnit.get(), credentials, [](const scenario::Step& step) {
    std::printf("%s\n", step.name.c_str());
    std::fflush(stdout);
  });
  if (verdict.kept) return std::printf("%s: all as written\n", wanted.name.c_str()), exitKept;
  std::fprintf(stderr, "phone: scenario %s, step \"%s\": %s\n", wanted.name.c_str(), verdict.step.c_str(),
               verdict.why.c_str());
  return exitBroken;
}

}  // namespace

bool asksForScenario(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--list-scenarios" || word.compare(0, 10, "--scenario") == 0) return true;
  }
  return false;
}

int runScenario(int argc, char** argv, Wake* wake) {
  ScenarioOptions options;
  CLI::App app("Plays a scenario to a head unit: what to open, send and expect.", "vantry-phone");
  describe(&app, &options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return tellUsage(app, error);
  }
  if (options.list) return list();
  if (options.scenario.empty()) {
    return complain(
        "--scenario needs the name of a scenario or of a file; --list-scenarios tells the former");
  }
  if (options.peer.connect.empty() && options.peer.listen.empty()) {
    return complain("--connect or --listen has to tell where the head unit is");
  }
  std::string error;
  const auto wanted = find(options.scenario, &error);
  const auto credentials = wanted ? loadCredentials(options.credentials, &error) : std::nullopt;
  if (!credentials) return complain(error);
  return play(options, *wanted, *credentials, wake);
}

}  // namespace phone
