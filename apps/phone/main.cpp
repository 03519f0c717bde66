// vantry-phone: plays a phone to a head unit over TCP.
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <exception>

#include "phone/PhoneSession.h"
#include "phone/SocketRunner.h"
#include "phone/program/CarJournal.h"
#include "phone/program/Console.h"
#include "phone/program/Files.h"
#include "phone/program/Options.h"
#include "phone/program/OutputFile.h"
#include "phone/program/Peer.h"
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

// `listener` is one if the head unit is to connect.
Socket reachHeadUnit(const Options& options, const Socket& listener, Wake* wake, std::string* error) {
  if (options.listens) {
    tellListening(listener);
    return acceptOne(listener, wake, error);
  }
  const std::string where = options.endpoint.words();
  spdlog::info("connecting to {}", where);
  Socket socket = connectTo(options.endpoint, connectLimit, wake, error);
  if (!error->empty()) {
    *error = "cannot connect to the head unit at " + where + ": " + *error +
             "; start it first, or check the address";
  }
  return socket;
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

/// What there has to be before the link. Nothing of it is written to.
struct Preparation {
  std::optional<Credentials> credentials;
  std::unique_ptr<VideoSource> video;
  std::vector<Song> songs;
  Socket listener;
};

bool readMusic(const Options& options, std::vector<Song>* songs, std::string* error) {
  *songs = options.music.empty() ? builtInMusic() : scanMusic(options.music, error);
  return !songs->empty();
}

bool openOutput(const Options& options, CarJournal* journal, std::string* error) {
  if (!canWriteAll(options.outputs(), error)) return false;
  if (!options.record.empty() && !journal->recordTo(options.record, error)) {
    *error += "; name another file with --record";
    return false;
  }
  return prepareMicrophoneFile(options, error);
}

// `session` is null if no link came about.
int report(const Options& options, const PhoneSession* session, const LinkEnd& end,
           const CarJournal& journal) {
  const int status = end.clean ? exitClean : exitLink;
  const char* how = session == nullptr ? "there was no link"
                    : end.clean        ? "the link has ended"
                                       : "the link has failed";
  spdlog::log(end.clean ? spdlog::level::info : spdlog::level::err, "{}: {}", how, end.words());
  std::string error;
  if (!journal.isWhole()) error = "cannot write " + options.record;
  if (!options.stats.empty()) writeFile(options.stats, statsJson(session, end, status), &error);
  if (error.empty()) return status;
  spdlog::error("{}; free some room or name another file", error);
  return status == exitClean ? exitUsage : status;
}

int runLink(const Options& options, Preparation prepared, CarJournal* journal, Wake* wake) {
  std::string error;
  Socket socket = reachHeadUnit(options, prepared.listener, wake, &error);
  prepared.listener.close();
  if (!error.empty()) return report(options, nullptr, {false, Side::medium, error, ""}, *journal);
  if (!socket) return report(options, nullptr, {true, Side::phone, "was interrupted", ""}, *journal);

  Timers timers(steadyNow);
  PhoneLink link(linkOptions(std::move(*prepared.credentials)));
  Console console(&link, &timers);
  PhoneSession session(&link, &timers, sessionOptions(options, journal),
                       videoFactory(options, std::move(prepared.video)));
  // The map is in the test picture, and in no other.
  const auto drive = [&session] { return session.pictureTime(); };
  ServicePlayers services(&link, &timers, std::move(prepared.songs),
                          options.video.empty() ? RouteClock(drive) : nullptr);
  SocketRunner runner(&link, &timers, wake);
  runner.onWake([&session] { session.interrupt(); });
  console.watch(&session);
  journal->start(&timers);
  session.start();
  runner.run(std::move(socket));
  return report(options, &session, session.outcome(), *journal);
}

// A port that others have is told before files are replaced.
bool prepare(Options* options, Preparation* prepared, std::string* error) {
  prepared->credentials = loadCredentials(options->credentials, error);
  if (!prepared->credentials) return false;
  prepared->video = openVideo(*options, options->size, error);
  if (prepared->video && !prepared->video->remark().empty()) spdlog::warn("{}", prepared->video->remark());
  if (!prepared->video || !readMusic(*options, &prepared->songs, error) || !settleSound(options, error)) {
    return false;
  }
  if (options->listens) prepared->listener = listenForHeadUnit(options->endpoint, error);
  return !options->listens || prepared->listener;
}

int run(Options options, Wake* wake) {
  std::string error;
  Preparation prepared;
  CarJournal journal;
  if (!prepare(&options, &prepared, &error) || !openOutput(options, &journal, &error)) {
    spdlog::error("{}", error);
    return exitUsage;
  }
  if (const std::string doubts = doubtsAbout(*prepared.credentials); !doubts.empty()) {
    spdlog::warn("{}; the head unit will probably refuse it", doubts);
  }
  return runLink(options, std::move(prepared), &journal, wake);
}

}  // namespace
}  // namespace phone

int main(int argc, char** argv) {
  try {
    // Whatever has to be read before there is a link, an interrupt finds somebody who heeds it.
    phone::Wake* const wake = phone::wakeOnSignals();
    if (argc > 1 && std::string(argv[1]) == "verify") return phone::runVerify(argc - 1, argv + 1, wake);
    if (phone::asksForScenario(argc, argv)) return phone::runScenario(argc, argv, wake);
    int status = 0;
    const auto options = phone::readOptions(argc, argv, &status);
    if (!options) return status;
    phone::setUpLog(options->verbose);
    return phone::run(*options, wake);
  } catch (const std::exception& failure) {
    spdlog::error("phone: {}; this should not happen", failure.what());
    return phone::exitLink;
  }
}
