#include "headunit/Server.h"

#include <poll.h>
#include <spdlog/spdlog.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace headunit {
namespace {

constexpr int WRONG_USAGE = 1;
constexpr int LINK_FAILED = 2;

constexpr milliseconds CONNECT_LIMIT(3000);
constexpr milliseconds BETWEEN_TRIES(200);
constexpr milliseconds AFTER_A_REFUSAL(1000);

}  // namespace

Server::Server(const Options& options, const Equipment& equipment, int signals)
    : options_(options), equipment_(equipment), signals_(signals), progress_(!options.verbose) {}

void Server::quit() {
  quitting_ = true;
  wake_.raise();
}

int Server::run() {
  if (!options_.connect && !listen()) return WRONG_USAGE;
  while (!isDone()) {
    FileDescriptor phone = nextPhone();
    if (!phone) break;
    serve(std::move(phone));
    if (options_.once || isDone()) break;
    status_ = 0;  // the next phone may do better
  }
  return status_;
}

bool Server::listen() {
  std::string error;
  listener_ = listenOn(options_.listen, &error);
  if (!listener_) {
    spdlog::error("Cannot wait for phones on {}: {}; choose another with --listen.", options_.listen.words(),
                  error);
    return false;
  }
  std::printf("listening on %s\n", localAddress(listener_).words().c_str());
  std::fflush(stdout);
  return true;
}

FileDescriptor Server::nextPhone() { return options_.connect ? connectToPhone() : acceptPhone(); }

FileDescriptor Server::acceptPhone() {
  for (;;) {
    wake_.clear();
    if (quitting_) return {};
    Address peer;
    FileDescriptor phone = acceptFrom(listener_, &peer);
    if (phone) {
      spdlog::info("A phone connects from {}.", peer.words());
      return phone;
    }
    // A peer that cannot be taken, for want of descriptors say, goes on waiting: without a pause this would
    // spin.
    if (errno != EAGAIN && errno != EWOULDBLOCK) {
      spdlog::warn("A phone that connects cannot be taken: {}.", std::strerror(errno));
      waitUntil(Clock::now() + AFTER_A_REFUSAL);
    } else {
      waitUntil({}, listener_.get());
    }
  }
}

// The phone may be about to start, so a refusal is not the last word; after a first link there is no hurry at
// all.
FileDescriptor Server::connectToPhone() {
  const TimePoint givesUpAt = Clock::now() + CONNECT_LIMIT;
  bool waits = everConnected_;  // a phone that hangs up at once is not called without a pause
  for (;;) {
    wake_.clear();
    if (quitting_) return {};
    if (std::exchange(waits, false)) {
      waitUntil(Clock::now() + BETWEEN_TRIES);
      continue;
    }
    std::string error;
    FileDescriptor phone = connectTo(*options_.connect, CONNECT_LIMIT, wake_, &error);
    if (phone) {
      everConnected_ = true;
      spdlog::info("Connected to the phone at {}.", options_.connect->words());
      return phone;
    }
    if (!everConnected_ && Clock::now() >= givesUpAt) {
      spdlog::error("Cannot connect to {}: {}; start the phone first, with --listen.",
                    options_.connect->words(), error);
      status_ = LINK_FAILED;
      return {};
    }
    waitUntil(Clock::now() + BETWEEN_TRIES);
  }
}

void Server::serve(FileDescriptor socket) {
  equipment_.libraryLines->clear();
  Link link(equipment_, std::move(socket), &wake_);
  std::optional<LinkEnd> end = link.start();
  if (!end) end = watchOver(&link);
  link.stop();
  settle(link.record(std::move(*end)));
}

LinkEnd Server::watchOver(Link* link) {
  LinkWatch watch(Clock::now(), LinkLimits());
  for (;;) {
    wake_.clear();
    if (quitting_ && !link->view().news.authentication)
      return LinkEnd::cleanly("interrupted before the handshake");
    leaveIfWanted(link, &watch);
    const LinkWatch::Verdict verdict = watch.look(link->view(), Clock::now());
    if (verdict.end) return *verdict.end;
    if (verdict.ping) link->ping();
    progress_.update(link->stats(), Clock::now());
    waitUntil(progress_.isShown() ? std::min(verdict.lookAgain, progress_.due()) : verdict.lookAgain);
  }
}

void Server::leaveIfWanted(Link* link, LinkWatch* watch) {
  if (!isDone() || watch->isLeaving()) return;
  link->sayBye();
  watch->leaving(quitting_ ? "ended by the user" : "all pictures that were wanted have been shown",
                 Clock::now());
}

void Server::settle(LinkRecord record) {
  progress_.clear();
  const VideoTotals totals = record.stats->totals();
  if (record.end.clean && totals.damaged > 0 && totals.decoded == 0) {
    record.end = {false, "phone",
                  "not one of its " + std::to_string(totals.frames) + " frames could be decoded",
                  "check that it sends H.264 and that its file is whole"};
  }
  status_ = record.end.clean ? 0 : LINK_FAILED;
  if (record.end.clean) {
    spdlog::info("The link has ended after {} frames: {}.", totals.frames, record.end.what);
  } else {
    spdlog::error("The link has failed after {} frames. {}.", totals.frames, record.end.words());
  }
  if (const std::string services = inWords(record.services); !services.empty()) {
    spdlog::info("Its services brought: {}.", services);
  }
  afterLink_(std::move(record));
}

void Server::waitUntil(std::optional<TimePoint> deadline, int descriptor) {
  pollfd waiting[] = {{wake_.descriptor(), POLLIN, 0}, {signals_, POLLIN, 0}, {descriptor, POLLIN, 0}};
  int timeout = -1;
  if (deadline) {
    const auto left = std::chrono::ceil<milliseconds>(*deadline - Clock::now()).count();
    timeout = static_cast<int>(std::clamp<long long>(left, 0, 60'000));
  }
  poll(waiting, 3, timeout);
  if (waiting[1].revents == 0) return;
  signalfd_siginfo signal;
  if (read(signals_, &signal, sizeof signal) > 0) quitting_ = true;
}

}  // namespace headunit
