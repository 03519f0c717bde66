#include "phone/program/VerifyCommand.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <fstream>

#include "phone/program/Signals.h"
#include "phone/verify/Report.h"
#include "phone/verify/SocketHeadUnit.h"

namespace phone {

namespace {

constexpr int exitPassed = 0;
constexpr int exitUsage = 1;
constexpr int exitFailed = 2;

struct VerifyOptions {
  std::string connect;
  std::string listen;
  std::string credentials = "credentials";
  std::vector<std::string> only;
  std::string junit;
  std::string html;
  bool list = false;
};

std::string checkEndpoint(const std::string& text) {
  return parseEndpoint(text) ? "" : "\"" + text + "\" is not HOST:PORT";
}

void describe(CLI::App* app, VerifyOptions* options) {
  auto* peer = app->add_option_group("Peer", "exactly one of");
  peer->add_option("--connect", options->connect, "connect to a head unit that listens there")
      ->check(checkEndpoint)
      ->type_name("HOST:PORT");
  peer->add_option("--listen", options->listen,
                   "wait there for a head unit that connects, for each link anew")
      ->check(checkEndpoint)
      ->type_name("HOST:PORT");
  peer->add_flag("--list", options->list, "list the checks and end");
  peer->require_option(1);
  app->add_option("--credentials", options->credentials, "folder of root.pem, phone.pem and phone.key")
      ->type_name("DIR")
      ->capture_default_str();
  app->add_option("--only", options->only, "only checks whose names begin so")->type_name("PREFIX");
  app->add_option("--junit", options->junit, "write the results as JUnit XML")->type_name("FILE.xml");
  app->add_option("--html", options->html, "write the results as one page")->type_name("FILE.html");
  app->footer(
      "Exit status: 0 if no check failed, 1 for wrong usage, 2 if a check failed or the "
      "run was broken off.");
}

int complain(const std::string& what) {
  std::fprintf(stderr, "phone: %s\n", what.c_str());
  return exitUsage;
}

bool write(const std::string& path, const std::string& text) {
  if (path.empty()) return true;
  std::ofstream file(path, std::ios::binary);
  file << text << std::flush;
  return static_cast<bool>(file);
}

void list(const verify::Checks& checks) {
  for (const verify::Check& check : checks) std::printf("%-28s  %s\n", check.name, check.meaning);
}

std::unique_ptr<verify::SocketHeadUnit> reach(const VerifyOptions& options, Wake* wake, std::string* error) {
  if (!options.connect.empty()) {
    return std::make_unique<verify::SocketHeadUnit>(*parseEndpoint(options.connect), wake);
  }
  Socket listener = listenOn(*parseEndpoint(options.listen), error);
  if (!listener) return nullptr;
  std::printf("listening on %s\n", localEndpoint(listener).words().c_str());
  std::fflush(stdout);
  return std::make_unique<verify::SocketHeadUnit>(std::move(listener), wake);
}

int verifyAgainst(const VerifyOptions& options, const Credentials& credentials,
                  const verify::Checks& checks) {
  std::string error;
  const auto headUnit = reach(options, wakeOnSignals(), &error);
  if (!headUnit)
    return complain("cannot listen on " + options.listen + ": " + error + "; choose another address");
  const bool coloured = isatty(STDOUT_FILENO) != 0;
  const verify::Run run =
      runChecks(checks, headUnit.get(), credentials, [coloured](const verify::Result& result) {
        std::printf("%s\n", tableLine(result, coloured).c_str());
        std::fflush(stdout);
      });
  std::printf("\n%s\n", summary(run).c_str());
  const std::string title =
      options.connect.empty() ? "the head unit on " + options.listen : "the head unit at " + options.connect;
  if (!write(options.junit, junitXml(run, title))) return complain("cannot write " + options.junit);
  if (!write(options.html, htmlPage(run, title))) return complain("cannot write " + options.html);
  const bool passed = run.brokenOff.empty() && run.count(verify::Outcome::failed) == 0;
  return passed ? exitPassed : exitFailed;
}

}  // namespace

int runVerify(int argc, char** argv) {
  VerifyOptions options;
  CLI::App app("Checks what a phone can observe of a head unit, one named behaviour after the other.",
               "vantry-phone verify");
  describe(&app, &options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? exitPassed : exitUsage;
  }
  const verify::Checks checks = choose(verify::allChecks(), options.only);
  if (checks.empty()) return complain("no check has a name that begins so; --list tells them all");
  if (options.list) return list(checks), exitPassed;
  std::string error;
  const auto credentials = loadCredentials(options.credentials, &error);
  if (!credentials) return complain(error);
  return verifyAgainst(options, *credentials, checks);
}

}  // namespace phone
