#include "phone/program/Peer.h"

#include <cstdio>
#include <utility>

namespace phone {

namespace {

std::string checkEndpoint(const std::string& text) {
  return parseEndpoint(text) ? "" : "\"" + text + "\" is not HOST:PORT, such as 127.0.0.1:7411";
}

std::string checkReachable(const std::string& text) {
  const auto endpoint = parseEndpoint(text);
  return endpoint && endpoint->port == 0 ? "\"" + text + "\" names no port; 0 is only for --listen" : "";
}

}  // namespace

CLI::Option_group* addPeer(CLI::App* app, Peer* peer, const std::string& whom) {
  CLI::Option_group* const group = app->add_option_group("Peer", "where the head unit is");
  group->add_option("--connect", peer->connect, "connect to a head unit that listens there")
      ->check(checkEndpoint)
      ->check(checkReachable)
      ->type_name("HOST:PORT");
  group->add_option("--listen", peer->listen, "wait there for " + whom)
      ->check(checkEndpoint)
      ->type_name("HOST:PORT");
  return group;
}

Socket listenForHeadUnit(const Endpoint& endpoint, std::string* error) {
  Socket listener = listenOn(endpoint, error);
  if (!listener) {
    *error = "cannot listen on " + endpoint.words() + ": " + *error +
             "; choose another address, or port 0 for any free one";
  }
  return listener;
}

void tellListening(const Socket& listener) {
  std::printf("listening on %s\n", localEndpoint(listener).words().c_str());
  std::fflush(stdout);
}

std::unique_ptr<verify::SocketHeadUnit> headUnitAt(const Peer& peer, Wake* wake, std::string* error) {
  if (!peer.connect.empty()) {
    return std::make_unique<verify::SocketHeadUnit>(*parseEndpoint(peer.connect), wake);
  }
  Socket listener = listenForHeadUnit(*parseEndpoint(peer.listen), error);
  if (!listener) return nullptr;
  tellListening(listener);
  return std::make_unique<verify::SocketHeadUnit>(std::move(listener), wake);
}

}  // namespace phone
