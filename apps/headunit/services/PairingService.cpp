#include "headunit/services/PairingService.h"

#include <spdlog/spdlog.h>

#include <cstdio>
#include <random>

#include "headunit/Printable.h"

namespace headunit {
namespace {

// Locally administered, as befits a car that does not exist.
constexpr char CAR_ADDRESS[] = "02:00:00:CA:12:01";

// Of 17 characters, as they are written everywhere, and some to spare.
constexpr std::size_t LONGEST_ADDRESS = 64;

constexpr BluetoothPairingMethod OFFERED[] = {BLUETOOTH_PAIRING_METHOD_2, BLUETOOTH_PAIRING_METHOD_3};

std::string sixDigits() {
  std::random_device random;
  char digits[8];
  std::snprintf(digits, sizeof digits, "%06d", std::uniform_int_distribution<int>(0, 999'999)(random));
  return digits;
}

bool isOffered(int method) {
  for (const BluetoothPairingMethod one : OFFERED) {
    if (one == method) return true;
  }
  return false;
}

std::string wordsFor(int method) {
  return method == BLUETOOTH_PAIRING_METHOD_2 ? "Compare the passkey" : "Type the passkey on the phone";
}

PairingManner complete(PairingManner manner) {
  if (!manner.makePasskey) manner.makePasskey = sixDigits;
  return manner;
}

}  // namespace

PairingService::PairingService(const ServiceContext& context, PairingManner manner)
    : context_(context), manner_(complete(std::move(manner))) {}

void PairingService::answerThrough(BluetoothEndpoint* endpoint) {
  endpoint_ = endpoint;
  endpoint->registerCarBluetoothAddress(CAR_ADDRESS);
  for (const BluetoothPairingMethod method : OFFERED) endpoint->registerPairingMethod(method);
}

void PairingService::closed() {
  context_.cluster->change([](ClusterView& view) { view.pairing.reset(); });
}

void PairingService::pairingRequest(std::string const& phoneAddress, int pairingMethod) {
  context_.tally->count(&ServiceTotals::pairingRequests);
  if (!isOffered(pairingMethod) || phoneAddress.size() > LONGEST_ADDRESS) {
    spdlog::warn("The phone wants to be paired by method {} and an address of {} bytes: refused.",
                 pairingMethod, phoneAddress.size());
    refuse(STATUS_INVALID_CONFIGURATION);
  } else if (refused_.knows(phoneAddress)) {
    refuse(STATUS_AUTHENTICATION_FAILURE);
  } else if (manner_.paired->knows(phoneAddress)) {
    context_.tally->count(&ServiceTotals::pairingsAccepted);
    endpoint_->onReadyForPairing(true);
  } else {
    ask(phoneAddress, pairingMethod);
  }
}

void PairingService::ask(const std::string& address, int method) {
  bool asksAlready = false;
  context_.cluster->change([&](ClusterView& view) {
    // The question must not change under the user's finger: another phone waits for the answer.
    asksAlready = view.pairing.has_value();
    if (!asksAlready) view.pairing = PairingView{address, wordsFor(method), manner_.makePasskey()};
  });
  if (manner_.answersItself) {
    answer(true);
    return;
  }
  if (!asksAlready) {
    spdlog::info(
        "The phone {} asks to be paired: in the window, Alt+Return accepts and Alt+Backspace refuses, or a "
        "click; "
        "--auto-pair answers by itself.",
        printable(address));
  }
  context_.tally->count(&ServiceTotals::pairingsDelayed);
  endpoint_->requestDelayedPairing();
}

bool PairingService::answer(bool accepts) {
  std::optional<PairingView> asked;
  context_.cluster->change([&asked](ClusterView& view) { asked.swap(view.pairing); });
  if (!asked) return false;
  if (accepts) {
    accept(asked->phoneAddress, asked->passkey);
  } else {
    refused_.add(asked->phoneAddress);
    refuse(STATUS_AUTHENTICATION_FAILURE);
  }
  return true;
}

void PairingService::refuse(MessageStatus reason) {
  context_.tally->count(&ServiceTotals::pairingsRefused);
  endpoint_->sendPairingResponse(reason, false);
}

void PairingService::accept(const std::string& address, const std::string& passkey) {
  manner_.paired->add(address);
  context_.tally->count(&ServiceTotals::pairingsAccepted);
  spdlog::info("Paired with {}.", printable(address));
  endpoint_->onReadyForPairing(false);
  endpoint_->sendAuthData(passkey);
}

}  // namespace headunit
