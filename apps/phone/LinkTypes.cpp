#include "phone/LinkTypes.h"

namespace phone {

const char* nameOf(LinkState state) {
  switch (state) {
    case LinkState::awaitingVersion: return "waiting for the version request";
    case LinkState::refused: return "idling after a refused version";
    case LinkState::handshaking: return "in the TLS handshake";
    case LinkState::awaitingAuth: return "waiting for the head unit's verdict on the certificate";
    case LinkState::discovering: return "waiting for the list of services";
    case LinkState::up: return "running";
    case LinkState::leaving: return "saying good-bye";
    case LinkState::ended: return "ended";
  }
  return "in no known state";
}

std::string LinkEnd::words() const {
  const char* who = side == Side::phone ? "phone: " : side == Side::headUnit ? "head unit: " : "connection: ";
  return who + what + (advice.empty() ? "" : "; " + advice);
}

}  // namespace phone
