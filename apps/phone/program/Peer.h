#ifndef PHONE_PROGRAM_PEER_H
#define PHONE_PROGRAM_PEER_H

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "phone/Socket.h"
#include "phone/verify/SocketHeadUnit.h"

namespace phone {

/// Where the head unit is, as the command line tells it: one of the two, the other is empty.
struct Peer {
  std::string connect;
  std::string listen;
};

/// Adds --connect and --listen, of which the group takes one. The user reads `whom` behind "wait there for".
CLI::Option_group* addPeer(CLI::App* app, Peer* peer, const std::string& whom);

/// Listens. An invalid socket, with a sentence in `error`, if that is impossible.
Socket listenForHeadUnit(const Endpoint& endpoint, std::string* error);
/// Tells on stdout where, as soon as a head unit may connect.
void tellListening(const Socket& listener);

/// The head unit, for one link after the other; already listening if it is to connect. Null, with a sentence
/// in `error`, if that is impossible.
std::unique_ptr<verify::SocketHeadUnit> headUnitAt(const Peer& peer, Wake* wake, std::string* error);

}  // namespace phone

#endif
