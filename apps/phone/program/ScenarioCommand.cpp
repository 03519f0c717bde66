#include "phone/program/ScenarioCommand.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "phone/program/Signals.h"
#include "phone/scenario/Scenario.h"
#include "phone/verify/SocketHeadUnit.h"

namespace phone {

namespace {

constexpr int exitKept = 0;
constexpr int exitUsage = 1;
constexpr int exitBroken = 3;

struct ScenarioOptions {
  std::string connect;
  std::string credentials = "credentials";
  std::string scenario;
  bool list = false;
};

std::string checkEndpoint(const std::string& text) {
  return parseEndpoint(text) ? "" : "\"" + text + "\" is not HOST:PORT";
}

void describe(CLI::App* app, ScenarioOptions* options) {
  auto* what = app->add_option_group("Scenario", "exactly one of");
  what->add_option("--scenario", options->scenario, "play this file, or the built-in scenario of this name")
      ->type_name("FILE.json");
  what->add_flag("--list-scenarios", options->list, "list the built-in scenarios");
  what->require_option(1);
  app->add_option("--connect", options->connect, "connect to a head unit that listens there")
      ->check(checkEndpoint)
      ->type_name("HOST:PORT");
  app->add_option("--credentials", options->credentials, "folder of root.pem, phone.pem and phone.key")
      ->type_name("DIR")
      ->capture_default_str();
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
  std::ifstream file(name, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file) {
    *error = "cannot read " + name + ", and no built-in scenario has that name; --list-scenarios tells them";
    return std::nullopt;
  }
  auto read = scenario::parseScenario(text.str(), error);
  if (!read) *error = name + ": " + *error;
  return read;
}

int play(const ScenarioOptions& options, const scenario::Scenario& wanted, const Credentials& credentials) {
  verify::SocketHeadUnit headUnit(*parseEndpoint(options.connect), wakeOnSignals());
  const auto verdict = scenario::play(wanted, &headUnit, credentials, [](const scenario::Step& step) {
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

int runScenario(int argc, char** argv) {
  ScenarioOptions options;
  CLI::App app("Plays a scenario to a head unit: what to open, send and expect.", "vantry-phone");
  describe(&app, &options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? exitKept : exitUsage;
  }
  if (options.list) return list();
  if (options.connect.empty()) return complain("--connect tells where the head unit is");
  std::string error;
  const auto wanted = find(options.scenario, &error);
  const auto credentials = wanted ? loadCredentials(options.credentials, &error) : std::nullopt;
  if (!credentials) return complain(error);
  return play(options, *wanted, *credentials);
}

}  // namespace phone
