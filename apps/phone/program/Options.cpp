#include "phone/program/Options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <map>

namespace phone {

namespace {

constexpr char footer[] =
    "Exit status: 0 after a link that ended in good order, 1 for wrong usage, 2 for a link that failed.\n"
    "With --listen HOST:0 the system chooses the port; a line \"listening on HOST:PORT\" tells which."
    "\n\"vantry-phone verify --help\" tells how to check a head unit, \"vantry-phone --list-scenarios\" what "
    "can be played.";

const std::map<std::string, PictureSize> sizes = {
    {"800x480", {800, 480}}, {"1280x720", {1280, 720}}, {"1920x1080", {1920, 1080}}};

const std::map<std::string, AudioStreamType> streams = {{"media", AUDIO_STREAM_MEDIA},
                                                        {"guidance", AUDIO_STREAM_GUIDANCE},
                                                        {"system", AUDIO_STREAM_SYSTEM_AUDIO},
                                                        {"telephony", AUDIO_STREAM_TELEPHONY}};

std::string checkSound(const std::string& text) {
  return text == "none" || streams.count(text) > 0 ? "" : "\"" + text + "\" is no stream of sound";
}

std::vector<AudioStreamType> soundsOf(const std::vector<std::string>& names) {
  std::vector<AudioStreamType> sounds;
  for (const std::string& name : names) {
    if (name != "none") sounds.push_back(streams.at(name));
  }
  return sounds;
}

std::string checkEndpoint(const std::string& text) {
  return parseEndpoint(text) ? "" : "\"" + text + "\" is not HOST:PORT";
}

std::string checkFrames(const std::string& text) {
  std::int64_t frames = 0;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, frames);
  const bool isNumber = read.ec == std::errc() && read.ptr == end && frames >= 0;
  return isNumber ? "" : "\"" + text + "\" is no number of frames";
}

struct Texts {
  std::string connect;
  std::string listen;
  std::string size = "800x480";
  std::vector<std::string> sounds = {"media", "guidance", "system", "telephony"};
};

void addPeer(CLI::App* app, Texts* texts) {
  auto* peer = app->add_option_group("Peer", "exactly one of");
  peer->add_option("--connect", texts->connect, "connect to a head unit that listens there")
      ->check(checkEndpoint)
      ->type_name("HOST:PORT");
  peer->add_option("--listen", texts->listen, "wait there for a head unit that connects")
      ->check(checkEndpoint)
      ->type_name("HOST:PORT");
  peer->require_option(1);
}

void addSound(CLI::App* app, Options* options, Texts* texts) {
  app->add_option("--audio", options->audio,
                  "play the sound of this file instead of the video's own, or a tone")
      ->type_name("FILE");
  app->add_option("--sounds", texts->sounds,
                  "which streams of sound to play: media,guidance,system,telephony or none")
      ->delimiter(',')
      ->check(checkSound)
      ->type_name("LIST")
      ->capture_default_str();
  app->add_option("--music", options->music, "songs to show and to browse, instead of the built-in ones")
      ->type_name("DIR");
  app->add_option("--microphone", options->microphone, "write what the car's microphone hears to this file")
      ->type_name("FILE.wav");
  app->add_option("--record", options->record,
                  "write what sensors, keys and touches tell to this file, a line each")
      ->type_name("FILE.jsonl");
}

void addPicture(CLI::App* app, Options* options, Texts* texts) {
  app->add_option("--video", options->video, "play this file instead of the test picture")->type_name("FILE");
  app->add_option("--size", texts->size, "800x480, 1280x720 or 1920x1080, if the head unit allows it")
      ->check(CLI::IsMember(sizes).description(""))
      ->type_name("SIZE")
      ->capture_default_str();
  app->add_option("--fps", options->fps, "frames a second of a picture that is encoded here")
      ->check(CLI::Range(1, 120).description(""))
      ->type_name("N")
      ->capture_default_str();
  app->add_option("--frames", options->frames, "end after so many frames; 0 for no limit")
      ->check(checkFrames)
      ->type_name("N");
  app->add_flag("--loop", options->loop, "start the files again at their end");
  app->add_flag("--fast", options->fast, "send as quickly as the head unit acknowledges");
}

}  // namespace

std::optional<Options> readOptions(int argc, char** argv, int* status) {
  Options options;
  Texts texts;
  CLI::App app(
      "Plays a phone: brings up a projection link to a head unit and streams picture and sound to it.",
      "vantry-phone");
  app.footer(footer);
  addPeer(&app, &texts);
  app.add_option("--credentials", options.credentials, "folder of root.pem, phone.pem and phone.key")
      ->type_name("DIR")
      ->capture_default_str();
  addPicture(&app, &options, &texts);
  addSound(&app, &options, &texts);
  app.add_option("--stats", options.stats, "write figures about the link to this file")
      ->type_name("FILE.json");
  app.add_flag("--verbose", options.verbose, "log every step of the link");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    *status = app.exit(error) == 0 ? 0 : 1;
    return std::nullopt;
  }
  options.listens = texts.connect.empty();
  options.endpoint = *parseEndpoint(options.listens ? texts.listen : texts.connect);
  options.size = sizes.at(texts.size);
  options.sounds = soundsOf(texts.sounds);
  return options;
}

}  // namespace phone
