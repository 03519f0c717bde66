#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "phone/Frame.h"
#include "phone/LinkTypes.h"

namespace test {

/// Gets one frame with its payload plain and gives none, one or more. A frame whose encryption flag is taken
/// away travels in the clear, one that gets it is enciphered.
using Tamper = std::function<std::vector<phone::Frame>(phone::Frame)>;

/// Stands between head unit and phone, with a TLS session to each, and may change every frame on its way.
class TamperingRelay {
 public:
  /// `options` are the phone's; without a certificate it shows the phone none.
  TamperingRelay(const phone::LinkOptions& options, bool showsCertificate, Tamper toPhone, Tamper toHeadUnit);
  ~TamperingRelay();

  /// What the phone is to get for a frame of the head unit's.
  phone::Bytes fromHeadUnit(const phone::Bytes& wireFrame);
  /// What the head unit is to get for a frame of the phone's, frame by frame.
  std::vector<phone::Bytes> fromPhone(phone::Frame frame);

 private:
  struct Ends;
  phone::Bytes handshakeForPhone(const phone::Frame& frame);
  phone::Bytes handshakeForHeadUnit(const phone::Frame& frame);

  std::unique_ptr<Ends> ends_;
  Tamper toPhone_;
  Tamper toHeadUnit_;
};

}  // namespace test
