#include "headunit/Options.h"

#include <CLI/CLI.hpp>
#include <charconv>

#include "common/OneFile.h"
#include "headunit/Credentials.h"

namespace headunit {
namespace {

/// What the command line holds as text until it has been checked as a whole.
struct Texts {
  std::string listen;
  std::string connect;
  std::string touches;
  std::string margins = "0x0";
};

CLI::Validator check(bool (*isRight)(const std::string&), const std::string& wanted) {
  return CLI::Validator(
      [isRight, wanted](const std::string& text) {
        return isRight(text) ? "" : "'" + text + "' is no " + wanted;
      },
      "");
}

bool isCount(const std::string& text) {
  long count = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), count);
  return read.ec == std::errc() && read.ptr == text.data() + text.size() && count >= 1;
}

std::optional<Size> parseSize(const std::string& text) {
  const std::size_t cross = text.find('x');
  if (cross == std::string::npos) return {};
  Size size;
  const char* const end = text.data() + text.size();
  const auto width = std::from_chars(text.data(), text.data() + cross, size.width);
  const auto height = std::from_chars(text.data() + cross + 1, end, size.height);
  const bool whole = width.ptr == text.data() + cross && height.ptr == end && width.ec == std::errc() &&
                     height.ec == std::errc();
  if (!whole || size.width < 0 || size.height < 0) return {};
  return size;
}

std::string inWords(Size size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

// What is wrong with margins, or nothing.
std::string marginsFault(const std::string& text) {
  const std::optional<Size> margins = parseSize(text);
  if (!margins) return "'" + text + "' is no WIDTHxHEIGHT";
  if (margins->width < SMALLEST_PICTURE.width && margins->height < SMALLEST_PICTURE.height) return {};
  return "'" + text + "' leaves nothing of a picture of " + inWords(SMALLEST_PICTURE) +
         ", the smallest that a phone may choose";
}

// The same for taps. A smaller picture may come than the place is in, which is told then.
std::string tapsFault(const std::string& text) {
  const std::optional<TouchScript> taps = parseTouchScript(text);
  if (!taps) return "'" + text + "' is no X,Y,EVERY_MS: three whole numbers, the last of them 2 or more";
  if (contains({0, 0, LARGEST_PICTURE.width, LARGEST_PICTURE.height}, taps->place)) return {};
  return "'" + text + "' is no place of any picture: the largest that a phone may choose has " +
         inWords(LARGEST_PICTURE);
}

// The same for a phone's address, which has the right form.
std::string portFault(const std::string& text) {
  const std::optional<Address> address = parseAddress(text);
  return address && address->port == 0 ? "port 0 is nobody's; give the phone's own" : "";
}

// What is wrong with the name of a file or a folder, or nothing.
std::string nameFault(const std::string& text) { return text.empty() ? "an empty name is none" : ""; }

void refuseOneFileForTwo(const Options& options) {
  std::vector<programs::NamedFile> files = {{"--stats", options.stats},
                                            {"--snapshot", options.snapshot},
                                            {"--audio-out", options.audioOut},
                                            {"--microphone", options.microphone},
                                            {"--drive", options.drive}};
  for (const std::string& path : credentialFiles(options.credentials))
    files.push_back({"--credentials", path});
  if (const std::string fault = programs::namedTwice(files); !fault.empty())
    throw CLI::ValidationError(fault + "; give each its own");
}

void addPeer(CLI::App* app, Options* options, Texts* texts) {
  const auto address = check([](const std::string& text) { return parseAddress(text).has_value(); },
                             "HOST:PORT such as 127.0.0.1:7411");
  auto* const listen =
      app->add_option("--listen", texts->listen, "Wait for a phone here; port 0 takes any free one");
  listen->check(address)->type_name("HOST:PORT")->capture_default_str();
  auto* const connect = app->add_option("--connect", texts->connect,
                                        "Connect to a phone that listens, instead of waiting for one");
  connect->check(address)->check(CLI::Validator(portFault, ""))->type_name("HOST:PORT")->excludes(listen);
  app->add_option("--credentials", options->credentials,
                  "Folder with root.pem, headunit.pem and headunit.key")
      ->required()
      ->check(CLI::Validator(nameFault, ""))
      ->type_name("DIR");
  app->add_flag("--once", options->once, "Exit when the link ends, instead of waiting for the next phone");
}

void addCar(CLI::App* app, Options* options, Texts* texts) {
  app->add_flag("--headless", options->headless,
                "No window; no sound device either, unless SDL_AUDIODRIVER names one");
  app->add_option("--margins", texts->margins,
                  "Pixels of each picture's size that the screen does not show, less than 800x480")
      ->check(CLI::Validator(marginsFault, ""))
      ->type_name("WxH")
      ->capture_default_str();
  app->add_option("--audio-out", options->audioOut, "Write the sound to this file instead of playing it")
      ->check(CLI::Validator(nameFault, ""))
      ->type_name("FILE.wav");
  app->add_option("--microphone", options->microphone, "Say what is in this file instead of listening")
      ->check(CLI::Validator(nameFault, ""))
      ->type_name("FILE.wav");
  app->add_option("--drive", options->drive, "Vehicle data to report; a short drive is built in")
      ->check(CLI::Validator(nameFault, ""))
      ->type_name("FILE.json");
  app->add_option("--touch", texts->touches, "Tap this place of the picture again and again")
      ->check(CLI::Validator(tapsFault, ""))
      ->type_name("X,Y,EVERY_MS");
  app->add_flag("--verification", options->verification,
                "Let a test application on the phone drive this car and see its screen");
  app->add_flag("--auto-pair", options->autoPair, "Accept every pairing instead of asking");
  app->add_flag("--browse", options->browse, "Show what the phone can play as soon as it offers a list");
}

void addResults(CLI::App* app, Options* options) {
  app->add_option("--snapshot", options->snapshot,
                  "Write the last picture shown, and the strip beside it, to this file")
      ->check(CLI::Validator(nameFault, ""))
      ->type_name("FILE.png");
  app->add_option("--exit-after-frames", options->exitAfterFrames,
                  "Say good-bye and exit after this many pictures")
      ->check(check(isCount, "whole number of 1 or more"))
      ->type_name("N");
  app->add_option("--stats", options->stats, "Write frames, bytes and latencies to this file")
      ->check(CLI::Validator(nameFault, ""))
      ->type_name("FILE.json");
  app->add_flag("--verbose", options->verbose, "Log in detail, the library's lines included");
}

}  // namespace

std::optional<Options> parseOptions(int argc, const char* const* argv, int* exitStatus) {
  Options options;
  Texts texts;
  texts.listen = options.listen.words();
  CLI::App app("Example head unit: shows a phone's projected screen, and is its car.", "vantry-headunit");
  app.footer(
      "Keys beside the picture: Alt with the arrows, Return and Backspace; F7 calls, F8 what can be played,\n"
      "F9 the radio. All others that have a key code are the phone's.\n"
      "Exit status: 0 after a clean end, 1 for wrong usage, 2 for a link that failed.");
  addPeer(&app, &options, &texts);
  addCar(&app, &options, &texts);
  addResults(&app, &options);
  try {
    app.parse(argc, argv);
    refuseOneFileForTwo(options);
  } catch (const CLI::ParseError& error) {
    *exitStatus = app.exit(error) == 0 ? 0 : 1;
    return {};
  }
  options.listen = *parseAddress(texts.listen);
  if (!texts.connect.empty()) options.connect = parseAddress(texts.connect);
  if (!texts.touches.empty()) options.touches = parseTouchScript(texts.touches);
  options.margins = *parseSize(texts.margins);
  return options;
}

}  // namespace headunit
