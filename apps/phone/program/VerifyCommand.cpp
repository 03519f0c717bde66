#include "phone/program/VerifyCommand.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>

#include "phone/program/Files.h"
#include "phone/program/OutputFile.h"
#include "phone/program/Peer.h"
#include "phone/program/Usage.h"
#include "phone/verify/Report.h"

namespace phone {

namespace {

constexpr int exitPassed = 0;
constexpr int exitUsage = 1;
constexpr int exitFailed = 2;

struct VerifyOptions {
  Peer peer;
  std::string credentials = "credentials";
  std::vector<std::string> only;
  std::string junit;
  std::string html;
  bool list = false;
};

void describe(CLI::App* app, VerifyOptions* options) {
  auto* const peer = addPeer(app, &options->peer, "a head unit that connects, for each link anew");
  peer->add_flag("--list", options->list, "list the checks and end");
  peer->require_option(1);
  addCredentials(app, &options->credentials);
  app->add_option("--only", options->only, "only checks whose names begin so")->type_name("PREFIX");
  addFile(app, "--junit", &options->junit, "write the results as JUnit XML", "FILE.xml");
  addFile(app, "--html", &options->html, "write the results as one page", "FILE.html");
  app->footer(
      "Exit status: 0 if no check failed, 1 for wrong usage, 2 if a check failed or the "
      "run was broken off.");
}

int complain(const std::string& what) {
  std::fprintf(stderr, "phone: %s\n", what.c_str());
  return exitUsage;
}

NamedFiles reports(const VerifyOptions& options) {
  return {{"--junit", options.junit}, {"--html", options.html}};
}

bool writeReports(const VerifyOptions& options, const verify::Run& run, std::string* error) {
  const std::string title = options.peer.connect.empty() ? "the head unit on " + options.peer.listen
                                                         : "the head unit at " + options.peer.connect;
  const bool hasXml = options.junit.empty() || writeFile(options.junit, junitXml(run, title), error);
  const bool hasPage = options.html.empty() || writeFile(options.html, htmlPage(run, title), error);
  return hasXml && hasPage;
}

void list(const verify::Checks& checks) {
  for (const verify::Check& check : checks) std::printf("%-28s  %s\n", check.name, check.meaning);
}

int verifyAgainst(const VerifyOptions& options, const Credentials& credentials, const verify::Checks& checks,
                  Wake* wake) {
  std::string error;
  const auto headUnit = headUnitAt(options.peer, wake, &error);
  if (!headUnit) return complain(error);
  const bool coloured = isatty(STDOUT_FILENO) != 0;
  const verify::Run run =
      runChecks(checks, headUnit.get(), credentials, [coloured](const verify::Result& result) {
        std::printf("%s\n", tableLine(result, coloured).c_str());
        std::fflush(stdout);
      });
  std::printf("\n%s\n", summary(run).c_str());
  if (!writeReports(options, run, &error)) return complain(error);
  const bool passed = run.brokenOff.empty() && run.count(verify::Outcome::failed) == 0;
  return passed ? exitPassed : exitFailed;
}

}  // namespace

int runVerify(int argc, char** argv, Wake* wake) {
  VerifyOptions options;
  CLI::App app("Checks what a phone can observe of a head unit, one named behaviour after the other.",
               "vantry-phone verify");
  describe(&app, &options);
  try {
    app.parse(argc, argv);
    refuseOneFileForTwo(reports(options), {}, options.credentials);
  } catch (const CLI::ParseError& error) {
    return tellUsage(app, error);
  }
  const verify::Checks checks = choose(verify::allChecks(), options.only);
  for (const std::string& prefix : options.only) {
    if (!choose(checks, {prefix}).empty()) continue;
    return complain("no check has a name that begins with \"" + prefix + "\"; --list tells them all");
  }
  if (options.list) return list(checks), exitPassed;
  std::string error;
  const auto credentials = loadCredentials(options.credentials, &error);
  // The run takes long: that a report cannot be written is told before it.
  if (!credentials || !canWriteAll(reports(options), &error)) return complain(error);
  return verifyAgainst(options, *credentials, checks, wake);
}

}  // namespace phone
