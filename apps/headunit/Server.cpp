#include "headunit/Server.h"

#include <spdlog/spdlog.h>

#include <algorithm>
#include <utility>

namespace headunit {
namespace {

constexpr int WRONG_USAGE = 1;
constexpr int LINK_FAILED = 2;

}  // namespace

Server::Server(const Options& options, const Equipment& equipment, int signals)
    : options_(options), equipment_(equipment), patience_(signals), progress_(!options.verbose) {}

int Server::run() {
  phones_ = options_.connect ? phoneToCall(*options_.connect, &patience_)
                             : phonesThatCall(options_.listen, &patience_);
  if (!phones_) return WRONG_USAGE;
  while (!isDone()) {
    FileDescriptor phone = nextPhone();
    if (!phone && !patience_.isOver()) return LINK_FAILED;
    if (!phone) break;
    serve(std::move(phone));
    if (options_.once || isDone()) break;
    status_ = 0;  // the next phone may do better
  }
  return status_;
}

FileDescriptor Server::nextPhone() {
  const auto await = [this](const std::string& place) {
    equipment_.cluster->change([&place](ClusterView& view) { view.phone.awaited = place; });
  };
  await(phones_->place());
  FileDescriptor phone = phones_->next();
  if (phone) await("");
  return phone;
}

void Server::serve(FileDescriptor socket) {
  equipment_.libraryLines->clear();
  Link link(equipment_, std::move(socket), patience_.wake());
  std::optional<LinkEnd> end = link.start();
  if (!end) end = watchOver(&link);
  link.stop();
  settle(link.record(std::move(*end)));
}

LinkEnd Server::watchOver(Link* link) {
  LinkWatch watch(Clock::now(), LinkLimits());
  for (;;) {
    if (!patience_.lasts() && !link->view().news.authentication)
      return LinkEnd::cleanly("interrupted before the handshake");
    leaveIfWanted(link, &watch);
    const LinkWatch::Verdict verdict = watch.look(link->view(), Clock::now());
    if (verdict.end) return *verdict.end;
    if (verdict.ping) link->ping();
    progress_.update(link->stats(), Clock::now());
    patience_.waitUntil(
        progress_.isShown() ? std::min(verdict.lookAgain, progress_.due()) : verdict.lookAgain,
        phones_->turnOthersAway());
  }
}

void Server::leaveIfWanted(Link* link, LinkWatch* watch) {
  if (!isDone() || watch->isLeaving()) return;
  link->sayBye();
  watch->leaving(patience_.isOver() ? "ended by the user" : "all pictures that were wanted have been shown",
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

}  // namespace headunit
