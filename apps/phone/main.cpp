// vantry-phone: plays a phone to a head unit over TCP.
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <cstdio>
#include <exception>
#include <fstream>

#include "phone/PhoneSession.h"
#include "phone/SocketRunner.h"
#include "phone/program/CarJournal.h"
#include "phone/program/Console.h"
#include "phone/program/Options.h"
#include "phone/program/ScenarioCommand.h"
#include "phone/program/Signals.h"
#include "phone/program/Sound.h"
#include "phone/program/Stats.h"
#include "phone/program/VerifyCommand.h"
#include "phone/services/ServicePlayers.h"

namespace phone {
namespace {

constexpr int exitClean = 0;
constexpr int exitUsage = 1;
constexpr int exitLink = 2;
constexpr Micros connectLimit = 3'500'000;

void setUpLog(bool verbose) {
  spdlog::set_default_logger(spdlog::stderr_color_mt("phone"));
  spdlog::set_pattern("%H:%M:%S.%e %n %^%l%$: %v");
  spdlog::set_level(verbose ? spdlog::level::debug : spdlog::level::info);
}

std::unique_ptr<VideoSource> openVideo(const Options& options, PictureSize size, std::string* error) {
  VideoOptions wanted;
  wanted.width = size.width;
  wanted.height = size.height;
  wanted.fps = options.fps;
  wanted.frames = options.frames;
  wanted.loop = options.loop;
  return options.video.empty() ? makeTestPicture(wanted, error) : openVideoFile(options.video, wanted, error);
}

// Opened before there is a link, so that a bad file is told at once; opened again if the head unit wants it
// in another size.
VideoFactory videoFactory(const Options& options, std::unique_ptr<VideoSource> early) {
  auto opened = std::make_shared<std::unique_ptr<VideoSource>>(std::move(early));
  return [options, opened](PictureSize size, std::string* error) {
    if (size == options.size && *opened) return std::move(*opened);
    return openVideo(options, size, error);
  };
}

Socket reachHeadUnit(const Options& options, Wake* wake, std::string* error) {
  const std::string where = options.endpoint.words();
  if (!options.listens) {
    spdlog::info("connecting to {}", where);
    Socket socket = connectTo(options.endpoint, connectLimit, wake, error);
    if (!error->empty()) {
      *error = "cannot connect to the head unit at " + where + ": " + *error +
               "; start it first, or check the address";
    }
    return socket;
  }
  const Socket listener = listenOn(options.endpoint, error);
  if (!listener) {
    *error =
        "cannot listen on " + where + ": " + *error + "; choose another address, or port 0 for any free one";
    return Socket();
  }
  std::printf("listening on %s\n", localEndpoint(listener).words().c_str());
  std::fflush(stdout);
  return acceptOne(listener, wake, error);
}

LinkOptions linkOptions(Credentials credentials) {
  LinkOptions options;
  options.credentials = std::move(credentials);
  options.identity.set_label_text("vantry-phone");
  options.interleaves = true;
  options.records = false;
  return options;
}

SessionOptions sessionOptions(const Options& options, CarListener* listener) {
  SessionOptions session;
  session.wish = {options.size, options.fps};
  session.stream.paced = !options.fast;
  session.stream.unitLimit = static_cast<std::uint64_t>(options.frames);
  session.sounds = options.sounds;
  session.makeSound = soundFactory(options);
  session.car.recordMicrophone = microphoneFile(options);
  session.car.listener = listener;
  return session;
}

struct Output {
  std::ofstream stats;
  CarJournal journal;
};

bool readMusic(const Options& options, std::vector<Song>* songs, std::string* error) {
  *songs = options.music.empty() ? builtInMusic() : scanMusic(options.music, error);
  return !songs->empty();
}

bool openOutput(const Options& options, Output* output, std::string* error) {
  if (!options.stats.empty()) output->stats.open(options.stats);
  if (!output->stats) {
    *error = "cannot write " + options.stats + "; name another file with --stats";
  } else if (!options.record.empty() && !output->journal.recordTo(options.record)) {
    *error = "cannot write " + options.record + "; name another file with --record";
  } else {
    return prepareMicrophoneFile(options, error);
  }
  return false;
}

// `session` is null if no link came about.
int report(const Options& options, const PhoneSession* session, const LinkEnd& end, Output* output) {
  const int status = end.clean ? exitClean : exitLink;
  const char* how = session == nullptr ? "there was no link"
                    : end.clean        ? "the link has ended"
                                       : "the link has failed";
  spdlog::log(end.clean ? spdlog::level::info : spdlog::level::err, "{}: {}", how, end.words());
  if (!options.stats.empty()) output->stats << statsJson(session, end, status) << std::flush;
  if (output->stats && output->journal.isWhole()) return status;
  spdlog::error("cannot write {}; free some room or name another file",
                output->stats ? options.record : options.stats);
  return status == exitClean ? exitUsage : status;
}

int runLink(const Options& options, Credentials credentials, std::unique_ptr<VideoSource> video,
            std::vector<Song> songs, Output* output) {
  Wake* const wake = wakeOnSignals();
  std::string error;
  Socket socket = reachHeadUnit(options, wake, &error);
  if (!error.empty()) return report(options, nullptr, {false, Side::medium, error, ""}, output);
  if (!socket) return report(options, nullptr, {true, Side::phone, "was interrupted", ""}, output);

  Timers timers(steadyNow);
  PhoneLink link(linkOptions(std::move(credentials)));
  Console console(&link, &timers);
  PhoneSession session(&link, &timers, sessionOptions(options, &output->journal),
                       videoFactory(options, std::move(video)));
  // The map is in the test picture, and in no other.
  const auto drive = [&session] { return session.pictureTime(); };
  ServicePlayers services(&link, &timers, std::move(songs),
                          options.video.empty() ? RouteClock(drive) : nullptr);
  SocketRunner runner(&link, &timers, wake);
  runner.onWake([&session] { session.interrupt(); });
  console.watch(&session);
  output->journal.start(&timers);
  session.start();
  runner.run(std::move(socket));
  return report(options, &session, session.outcome(), output);
}

int run(Options options) {
  std::string error;
  Output output;
  std::vector<Song> songs;
  auto credentials = loadCredentials(options.credentials, &error);
  auto video = credentials ? openVideo(options, options.size, &error) : nullptr;
  if (!video || !readMusic(options, &songs, &error) || !settleSound(&options, &error) ||
      !openOutput(options, &output, &error)) {
    spdlog::error("{}", error);
    return exitUsage;
  }
  if (const std::string doubts = doubtsAbout(*credentials); !doubts.empty()) {
    spdlog::warn("{}; the head unit will probably refuse it", doubts);
  }
  return runLink(options, std::move(*credentials), std::move(video), std::move(songs), &output);
}

}  // namespace
}  // namespace phone

int main(int argc, char** argv) {
  try {
    if (argc > 1 && std::string(argv[1]) == "verify") return phone::runVerify(argc - 1, argv + 1);
    if (phone::asksForScenario(argc, argv)) return phone::runScenario(argc, argv);
    int status = 0;
    const auto options = phone::readOptions(argc, argv, &status);
    if (!options) return status;
    phone::setUpLog(options->verbose);
    return phone::run(*options);
  } catch (const std::exception& failure) {
    spdlog::error("phone: {}; this should not happen", failure.what());
    return phone::exitLink;
  }
}
