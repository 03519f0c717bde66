#include "SecureLink.h"

#include <stdexcept>

namespace test {

SecureLink::SecureLink(const Identity& identity, const std::string& root, const phone::TlsOptions& options) {
  const TestCredentials& known = credentials();
  EXPECT_TRUE(controller().setClientCreds(root, known.headUnit.certificate, known.headUnit.key));
  std::string error;
  phone_ = phone::TlsServer::create({known.root, identity.certificate, identity.key}, options, &error);
  if (phone_ == nullptr) throw std::invalid_argument(error);
}

void SecureLink::acceptsVersion() { feeds(frame(0, ATOMIC, bytes("00 02 00 01 00 00 00"))); }

Bytes SecureLink::nextFlight() {
  Bytes question;
  for (const Bytes& wire : sentFrames()) {
    const Bytes whole = parseFrame(wire).payload;
    if (part(whole, 0, 2) == bytes("00 03")) question = part(whole, 2);
  }
  phone::Bytes answer;
  if (!question.empty()) phone_->handshake(question.data(), question.size(), &answer);
  return answer;
}

int SecureLink::sendsHandshake(const Bytes& records) {
  return feeds(frames(0, 0, message(MESSAGE_SSL_HANDSHAKE, records)));
}

void SecureLink::bringUp() {
  acceptsVersion();
  for (Bytes flight = nextFlight(); !flight.empty(); flight = nextFlight()) sendsHandshake(flight);
  EXPECT_TRUE(phone_->established());
  sentFrames();
}

Bytes SecureLink::encrypted(const Bytes& plain) { return phone_->encrypt(plain.data(), plain.size()); }

Bytes SecureLink::decrypted(const Bytes& records) {
  phone::Bytes plain;
  EXPECT_TRUE(phone_->decrypt(records, &plain)) << phone_->error();
  return plain;
}

int SecureLink::sendsEncrypted(int channel, const Bytes& wholeMessage) {
  return feeds(frame(channel, ATOMIC | ENCRYPTED, encrypted(wholeMessage)));
}

}  // namespace test
