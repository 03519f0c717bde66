#include <signal.h>
#include <spdlog/spdlog.h>
#include <sys/signalfd.h>

#include <exception>
#include <thread>

#include "headunit/Options.h"
#include "headunit/Screen.h"
#include "headunit/Server.h"
#include "headunit/media/FfmpegDecoder.h"
#include "headunit/media/Results.h"
#include "headunit/media/ScreenImage.h"
#include "headunit/media/Window.h"
#include "headunit/program/Car.h"
#include "headunit/program/HostLog.h"

namespace headunit {
namespace {

constexpr int WRONG_USAGE = 1;

/// Returns what `act` does, or 1 if it cannot go on, which is logged.
template <class Act>
int reportingFaults(const Act& act) {
  try {
    return act();
  } catch (const std::exception& error) {
    spdlog::critical("The head unit cannot go on: {}.", error.what());
    return 1;
  }
}

// No thread takes these signals by itself; they are read from a descriptor where there is time for them.
FileDescriptor signalsToEndBy() {
  // What cannot be written is told by the write itself.
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGHUP);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

int runWith(const Options& options, Server* server, Screen* screen, Car* car) {
  car->openDevices();
  const Screenshots camera(screen);
  if (options.verification) car->allowVerification(&camera);
  Results results({options.stats, options.snapshot}, screen,
                  [car](std::function<void()> work) { car->slowWork()->post(std::move(work)); });
  server->afterLink([&results](LinkRecord record) { results.afterLink(std::move(record)); });
  int status = 0;
  std::thread serving([&] {
    status = reportingFaults([server] { return server->run(); });
    car->slot()->close();
  });
  // The thread has to be joined whatever happens here.
  const int seen = reportingFaults([screen] {
    screen->run();
    return 0;
  });
  if (seen != 0) server->quit();
  serving.join();
  if (seen != 0) return seen;
  const bool heard = car->finish();
  const bool told = results.atEnd();
  return status == 0 && !(heard && told) ? WRONG_USAGE : status;
}

int run(const Options& options, int signals) {
  std::string error;
  Car car(options);
  if (!car.equip(&error)) {
    spdlog::error("{}.", error);
    return WRONG_USAGE;
  }
  Server server(options, car.equipment(), signals);
  if (options.headless) {
    HeadlessScreen screen(car.slot(), car.cluster(), options.margins);
    return runWith(options, &server, &screen, &car);
  }
  Window window(car.slot(), car.cluster(), options.margins,
                WindowInput(car.controls(), car.clusterKeys(), car.cluster()), [&server] { server.quit(); });
  if (!window.open(&error)) {
    spdlog::error("Cannot open a window: {}; without a display, use --headless.", error);
    return WRONG_USAGE;
  }
  car.slot()->whenChanged(window.waker());
  car.cluster()->whenChanged(window.waker());
  return runWith(options, &server, &window, &car);
}

}  // namespace
}  // namespace headunit

int main(int argc, char** argv) {
  const headunit::FileDescriptor signals = headunit::signalsToEndBy();
  int exitStatus = 0;
  const std::optional<headunit::Options> options = headunit::parseOptions(argc, argv, &exitStatus);
  if (!options) return exitStatus;
  headunit::setUpLog(options->verbose);
  headunit::quietenFfmpeg();
  return headunit::reportingFaults([&] { return headunit::run(*options, signals.get()); });
}
