#include "phone/program/Options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <limits>
#include <map>
#include <set>

#include "phone/program/Files.h"
#include "phone/program/Peer.h"
#include "phone/program/Usage.h"

namespace phone {

namespace {

constexpr char footer[] =
    "Exit status: 0 after a link that ended in good order, 1 for wrong usage, 2 for a link that failed.\n"
    "With --listen HOST:0 the system chooses the port; a line \"listening on HOST:PORT\" tells which.\n"
    "Two commands with options of their own, each with its help and a list of what it knows:\n"
    "  vantry-phone verify                  checks a head unit; verify --help, verify --list\n"
    "  vantry-phone --scenario NAME|FILE    plays a scenario; --scenario --help, --list-scenarios";

const std::map<std::string, PictureSize> sizes = {
    {"800x480", {800, 480}}, {"1280x720", {1280, 720}}, {"1920x1080", {1920, 1080}}};

const std::map<std::string, AudioStreamType> streams = {{"media", AUDIO_STREAM_MEDIA},
                                                        {"guidance", AUDIO_STREAM_GUIDANCE},
                                                        {"system", AUDIO_STREAM_SYSTEM_AUDIO},
                                                        {"telephony", AUDIO_STREAM_TELEPHONY}};

std::string checkSound(const std::string& text) {
  if (text == "none" || streams.count(text) > 0) return {};
  return "\"" + text + "\" is none of media, guidance, system, telephony and none";
}

std::string checkSize(const std::string& text) {
  return sizes.count(text) > 0 ? "" : "\"" + text + "\" is not 800x480, 1280x720 or 1920x1080";
}

std::vector<AudioStreamType> soundsOf(const std::vector<std::string>& names) {
  const std::set<std::string> all(names.begin(), names.end());
  if (all.count("none") > 0 && all.size() > 1) throw CLI::ValidationError("--sounds", "none stands alone");
  std::vector<AudioStreamType> sounds;
  for (const std::string& name : all) {
    if (name != "none") sounds.push_back(streams.at(name));
  }
  return sounds;
}

template <class Number>
bool isWholeNumber(const std::string& text, Number least, Number most) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  return read.ec == std::errc() && read.ptr == end && number >= least && number <= most;
}

std::string checkFrames(const std::string& text) {
  const bool isRight = isWholeNumber<std::int64_t>(text, 0, std::numeric_limits<std::int64_t>::max());
  return isRight ? "" : "\"" + text + "\" is no number of frames, which is whole and 0 or more";
}

std::string checkRate(const std::string& text) {
  return isWholeNumber(text, 1, 120) ? "" : "\"" + text + "\" is no whole number from 1 to 120";
}

struct Texts {
  Peer peer;
  std::string size = "800x480";
  std::vector<std::string> sounds = {"media", "guidance", "system", "telephony"};
};

void addSound(CLI::App* app, Options* options, Texts* texts) {
  addFile(app, "--audio", &options->audio,
          "play the sound of this file instead of the video's own, or a tone", "FILE");
  app->add_option("--sounds", texts->sounds,
                  "which streams of sound to play: media,guidance,system,telephony or none")
      ->delimiter(',')
      ->check(checkSound)
      ->type_name("LIST")
      ->capture_default_str();
  addFile(app, "--music", &options->music, "songs to show and to browse, instead of the built-in ones",
          "DIR");
  addFile(app, "--microphone", &options->microphone, "write what the car's microphone hears to this file",
          "FILE.wav");
  addFile(app, "--record", &options->record,
          "write what sensors, keys and touches tell to this file, a line each", "FILE.jsonl");
}

void addPicture(CLI::App* app, Options* options, Texts* texts) {
  addFile(app, "--video", &options->video, "play this file instead of the test picture", "FILE");
  app->add_option("--size", texts->size, "800x480, 1280x720 or 1920x1080, if the head unit allows it")
      ->check(checkSize)
      ->type_name("SIZE")
      ->capture_default_str();
  app->add_option("--fps", options->fps, "frames a second of a picture that is encoded here")
      ->check(checkRate)
      ->type_name("N")
      ->capture_default_str();
  app->add_option("--frames", options->frames, "end after so many frames; 0 for no limit")
      ->check(checkFrames)
      ->type_name("N");
  app->add_flag("--loop", options->loop, "start the files again at their end");
  app->add_flag("--fast", options->fast, "send as quickly as the head unit acknowledges");
}

void addAll(CLI::App* app, Options* options, Texts* texts) {
  app->footer(footer);
  addPeer(app, &texts->peer, "a head unit that connects")->require_option(1);
  addCredentials(app, &options->credentials);
  addPicture(app, options, texts);
  addSound(app, options, texts);
  addFile(app, "--stats", &options->stats, "write figures about the link to this file", "FILE.json");
  app->add_flag("--verbose", options->verbose, "log every step of the link");
}

}  // namespace

NamedFiles Options::outputs() const {
  return {{"--stats", stats}, {"--record", record}, {"--microphone", microphone}};
}

std::optional<Options> readOptions(int argc, char** argv, int* status) {
  Options options;
  Texts texts;
  CLI::App app(
      "Plays a phone: brings up a projection link to a head unit and streams picture and sound to it.",
      "vantry-phone");
  addAll(&app, &options, &texts);
  try {
    app.parse(argc, argv);
    options.sounds = soundsOf(texts.sounds);
    refuseOneFileForTwo(options.outputs(), {{"--video", options.video}, {"--audio", options.audio}},
                        options.credentials);
  } catch (const CLI::ParseError& error) {
    *status = tellUsage(app, error);
    return std::nullopt;
  }
  options.listens = texts.peer.connect.empty();
  options.endpoint = *parseEndpoint(options.listens ? texts.peer.listen : texts.peer.connect);
  options.size = sizes.at(texts.size);
  return options;
}

}  // namespace phone
