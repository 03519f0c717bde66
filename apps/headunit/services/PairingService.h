#pragma once

#include <BluetoothEndpoint.h>

#include "headunit/services/Hosted.h"
#include "headunit/services/PhoneAddresses.h"

namespace headunit {

/// Who decides on a pairing, and what is compared.
struct PairingManner {
  bool answersItself = false;                ///< without asking the user
  PairedPhones* paired = nullptr;            ///< outlives the services
  std::function<std::string()> makePasskey;  ///< a new one a pairing; not set: six random digits
};

/// Answers the phone's wish to be paired. There is no Bluetooth in this program: what it pairs is remembered,
/// and nothing else. Its meanings of the four methods, of which it offers the second and the third:
///
///     1  nothing is compared      2  both show the passkey, and the user compares
///     3  the user types the passkey on the phone      4  the passkey goes another way
///
/// The passkey goes to the phone as authentication data once the pairing has been accepted. While the user is
/// asked the phone is told to wait, and may ask again as often as it likes. So is a phone of another address:
/// it is heard when it asks again after the answer. A phone that the user has refused is refused at once from
/// then on, for as long as its link lasts: some ask again without end, and nobody wants to answer without
/// end.
class PairingService : public IBluetoothCallbacks {
 public:
  using Interface = IBluetoothCallbacks;

  PairingService(const ServiceContext& context, PairingManner manner);
  void answerThrough(BluetoothEndpoint* endpoint);
  void opened() { context_.tally->count(&ServiceTotals::pairingOpened); }
  void closed();

  /// Any thread: the user's answer. False if nothing is asked.
  bool answer(bool accepts);

  void pairingRequest(std::string const& phoneAddress, int pairingMethod) override;

 private:
  void accept(const std::string& address, const std::string& passkey);
  void refuse(MessageStatus reason);
  void ask(const std::string& address, int method);

  const ServiceContext context_;
  const PairingManner manner_;
  PhoneAddresses refused_;
  BluetoothEndpoint* endpoint_ = nullptr;
};

using PairingEndpoint = Hosted<BluetoothEndpoint, PairingService>;

}  // namespace headunit
