#include "headunit/Options.h"

#include <CLI/CLI.hpp>

namespace headunit {
namespace {

CLI::Validator addressValidator() {
  return CLI::Validator(
      [](const std::string& text) {
        return parseAddress(text) ? std::string() : "'" + text + "' is no HOST:PORT such as 127.0.0.1:7411";
      },
      "HOST:PORT");
}

}  // namespace

std::optional<Options> parseOptions(int argc, char** argv, int* exitStatus) {
  Options options;
  std::string listen = options.listen.words();
  std::string connect;
  CLI::App app("Example head unit: shows a phone's projected screen.", "vantry-headunit");
  app.footer("Exit status: 0 after a clean end, 1 for wrong usage, 2 for a link that failed.");
  auto* const listening =
      app.add_option("--listen", listen, "Wait for a phone here; port 0 takes any free one")
          ->check(addressValidator())
          ->capture_default_str();
  app.add_option("--connect", connect, "Connect to a phone that listens, instead of waiting for one")
      ->check(addressValidator())
      ->excludes(listening);
  app.add_option("--credentials", options.credentials, "Folder with root.pem, headunit.pem and headunit.key")
      ->required()
      ->type_name("DIR");
  app.add_flag("--headless", options.headless, "Decode without a window; needs no display");
  app.add_option("--snapshot", options.snapshot, "Write the last picture shown to this file")
      ->type_name("FILE.png");
  app.add_option("--exit-after-frames", options.exitAfterFrames,
                 "Say good-bye and exit after this many pictures")
      ->check(CLI::PositiveNumber)
      ->type_name("N");
  app.add_option("--stats", options.stats, "Write frames, bytes and latencies to this file")
      ->type_name("FILE.json");
  app.add_flag("--once", options.once, "Exit when the link ends, instead of waiting for the next phone");
  app.add_flag("--verbose", options.verbose, "Log in detail, the library's lines included");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    *exitStatus = app.exit(error) == 0 ? 0 : 1;
    return {};
  }
  options.listen = *parseAddress(listen);
  if (!connect.empty()) options.connect = parseAddress(connect);
  return options;
}

}  // namespace headunit
