#include "TamperingRelay.h"

#include <utility>

#include "../unit/phone_head_unit.h"

namespace test {

namespace {

std::vector<phone::Frame> unchanged(phone::Frame frame) { return {std::move(frame)}; }

bool isHandshake(const phone::Frame& frame) {
  return frame.channel == 0 && frame.payload.size() > 2 && frame.payload[0] == 0 &&
         frame.payload[1] == MESSAGE_SSL_HANDSHAKE && !frame.has(phone::flagEncrypted);
}

phone::Bytes bodyOf(const phone::Frame& frame) { return {frame.payload.begin() + 2, frame.payload.end()}; }

phone::Bytes plainMessage(int type, const phone::Bytes& body) {
  phone::Bytes wire;
  for (const phone::Frame& frame :
       phone::cutMessage(0, phone::messageBytes(static_cast<std::uint16_t>(type), body), 0)) {
    phone::append(&wire, phone::encodeFrame(frame));
  }
  return wire;
}

}  // namespace

struct TamperingRelay::Ends {
  std::unique_ptr<phone::TlsServer> towardsHeadUnit;
  TlsClient towardsPhone;
  phone::Bytes serverFlight;  ///< Held back until the phone has sent its own.
  phone::Bytes phoneFlight;   ///< Taken when the head unit speaks next.
};

TamperingRelay::TamperingRelay(const phone::LinkOptions& options, bool showsCertificate, Tamper toPhone,
                               Tamper toHeadUnit)
    : toPhone_(toPhone ? std::move(toPhone) : unchanged),
      toHeadUnit_(toHeadUnit ? std::move(toHeadUnit) : unchanged) {
  std::string error;
  ends_.reset(new Ends{phone::TlsServer::create(options.credentials, options.tls, &error),
                       TlsClient(showsCertificate ? credentials().headUnit : Identity{}),
                       {},
                       {}});
  if (!ends_->towardsHeadUnit) throw std::invalid_argument(error);
}

TamperingRelay::~TamperingRelay() = default;

phone::Bytes TamperingRelay::fromHeadUnit(const phone::Bytes& wireFrame) {
  phone::FrameDecoder decoder;
  decoder.feed(wireFrame.data(), wireFrame.size());
  phone::Frame frame;
  if (!decoder.next(&frame)) return wireFrame;
  if (isHandshake(frame)) return handshakeForPhone(frame);
  if (!ends_->phoneFlight.empty()) ends_->towardsPhone.handshake(std::exchange(ends_->phoneFlight, {}));

  phone::Bytes plain;
  const bool secret = frame.has(phone::flagEncrypted) && ends_->towardsHeadUnit->established();
  if (secret && ends_->towardsHeadUnit->decrypt(frame.payload, &plain)) frame.payload = plain;
  phone::Bytes wire;
  for (phone::Frame& one : toPhone_(std::move(frame))) {
    if (one.has(phone::flagEncrypted) && ends_->towardsPhone.established()) {
      one.payload = ends_->towardsPhone.encrypt(one.payload);
    }
    phone::append(&wire, phone::encodeFrame(one));
  }
  return wire;
}

// Each side's flight is passed on as the relay's own, at the moment at which it came.
phone::Bytes TamperingRelay::handshakeForPhone(const phone::Frame& frame) {
  const phone::Bytes body = bodyOf(frame);
  ends_->towardsHeadUnit->handshake(body.data(), body.size(), &ends_->serverFlight);
  return plainMessage(MESSAGE_SSL_HANDSHAKE,
                      ends_->towardsPhone.handshake(std::exchange(ends_->phoneFlight, {})));
}

phone::Bytes TamperingRelay::handshakeForHeadUnit(const phone::Frame& frame) {
  ends_->phoneFlight = bodyOf(frame);
  phone::Bytes flight = std::exchange(ends_->serverFlight, {});
  // Signatures vary by a byte or two: only a flight much shorter than the relay's own was cut.
  if (ends_->phoneFlight.size() < flight.size() * 3 / 4) flight.resize(ends_->phoneFlight.size());
  return plainMessage(MESSAGE_SSL_HANDSHAKE, flight);
}

std::vector<phone::Bytes> TamperingRelay::fromPhone(phone::Frame frame) {
  if (isHandshake(frame)) return {handshakeForHeadUnit(frame)};
  if (frame.has(phone::flagEncrypted) && ends_->towardsPhone.established()) {
    const phone::Bytes plain = ends_->towardsPhone.decrypt(frame.payload);
    // Records that are damaged stay so.
    if (plain.empty() && !frame.payload.empty()) return {phone::encodeFrame(frame)};
    frame.payload = plain;
  }
  std::vector<phone::Bytes> wire;
  for (phone::Frame& one : toHeadUnit_(std::move(frame))) {
    if (one.has(phone::flagEncrypted) && ends_->towardsHeadUnit->established()) {
      one.payload = ends_->towardsHeadUnit->encrypt(one.payload.data(), one.payload.size());
    }
    wire.push_back(phone::encodeFrame(one));
  }
  return wire;
}

}  // namespace test
