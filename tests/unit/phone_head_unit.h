#pragma once

#include <openssl/ssl.h>
#include <protos.pb.h>

#include <memory>
#include <vector>

#include "TestCredentials.h"
#include "Wire.h"
#include "phone/OpenSslTypes.h"
#include "phone/PhoneLink.h"

namespace test {

/// The TLS client that a head unit is, over memory BIOs.
class TlsClient {
 public:
  /// Without an identity it shows no certificate.
  explicit TlsClient(const Identity& identity = {}) : context_(SSL_CTX_new(TLS_client_method())) {
    SSL_CTX_set_max_proto_version(context_.get(), TLS1_2_VERSION);
    if (!identity.certificate.empty()) {
      SSL_CTX_use_certificate(context_.get(), phone::readCertificates(identity.certificate)[0].get());
      SSL_CTX_use_PrivateKey(context_.get(), phone::readKey(identity.key).get());
    }
    ssl_.reset(SSL_new(context_.get()));
    SSL_set_bio(ssl_.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));
    SSL_set_connect_state(ssl_.get());
  }

  /// Takes the server's records, returns the flight to send.
  Bytes handshake(const Bytes& in = {}) {
    if (!in.empty()) BIO_write(SSL_get_rbio(ssl_.get()), in.data(), static_cast<int>(in.size()));
    SSL_do_handshake(ssl_.get());
    return takeOutput();
  }
  bool established() const { return SSL_is_init_finished(ssl_.get()) == 1; }

  Bytes encrypt(const Bytes& plain) {
    SSL_write(ssl_.get(), plain.data(), static_cast<int>(plain.size()));
    return takeOutput();
  }
  Bytes decrypt(const Bytes& records) {
    BIO_write(SSL_get_rbio(ssl_.get()), records.data(), static_cast<int>(records.size()));
    Bytes plain(records.size(), 0);
    std::size_t size = 0;
    int got = 0;
    while ((got = SSL_read(ssl_.get(), &plain[size], static_cast<int>(plain.size() - size))) > 0) {
      size += static_cast<std::size_t>(got);
    }
    plain.resize(size);
    return plain;
  }
  SSL* ssl() { return ssl_.get(); }

 private:
  Bytes takeOutput() {
    Bytes out(static_cast<std::size_t>(BIO_pending(SSL_get_wbio(ssl_.get()))), 0);
    if (!out.empty()) BIO_read(SSL_get_wbio(ssl_.get()), out.data(), static_cast<int>(out.size()));
    return out;
  }

  phone::SslContextPointer context_;
  phone::SslPointer ssl_;
};

/// A head unit written by hand, for a phone link under test.
class HandMadeHeadUnit {
 public:
  explicit HandMadeHeadUnit(phone::PhoneLink* phone, const Identity& identity = credentials().headUnit)
      : phone_(phone), tls_(identity) {}

  std::size_t cut = SIZE_MAX;  ///< Bytes reach the phone in pieces of this size.

  void feeds(const Bytes& wire) {
    for (std::size_t at = 0; at < wire.size(); at += std::min(cut, wire.size() - at)) {
      phone_->feed(part(wire, at, cut));
    }
  }
  /// A whole message, enciphered frame by frame once TLS stands and the flag is there.
  void sends(int channel, const Bytes& whole, int flags = ENCRYPTED) {
    for (const Bytes& wire : frames(channel, flags, whole)) feeds(encipher(wire));
  }
  void sends(int channel, int type, const google::protobuf::MessageLite& record, int flags = ENCRYPTED) {
    sends(channel, message(type, record), flags);
  }

  /// What the phone has sent since the last look, payloads plain.
  std::vector<WireFrame> hears() {
    std::vector<WireFrame> heard;
    for (const Bytes& wire : cutIntoFrames(phone_->takeOutput())) {
      WireFrame one = parseFrame(wire);
      if (tls_.established() && (one.flags & ENCRYPTED) != 0) one.payload = tls_.decrypt(one.payload);
      heard.push_back(one);
    }
    return heard;
  }
  /// The payloads of what hears() tells.
  std::vector<Bytes> hearsMessages() {
    std::vector<Bytes> messages;
    for (const WireFrame& one : hears()) messages.push_back(one.payload);
    return messages;
  }

  // The steps of a bring-up, each leaving nothing unheard.
  void asksVersion() { sends(0, bytes("00 01 00 01 00 00"), 0); }
  void shakesHands() {
    hears();
    sends(0, message(MESSAGE_SSL_HANDSHAKE, tls_.handshake()), 0);
    while (!tls_.established()) {
      const auto heard = hears();
      if (heard.empty()) return;
      const Bytes reply = tls_.handshake(part(heard.at(0).payload, 2));
      if (!reply.empty()) sends(0, message(MESSAGE_SSL_HANDSHAKE, reply), 0);
    }
  }
  void agrees(int status = 0) {
    AuthResponse answer;
    answer.set_status(status);
    sends(0, MESSAGE_AUTH_RESPONSE, answer, 0);
  }
  void bringsUp(const ServiceDiscoveryResponse& services = {}) {
    asksVersion();
    shakesHands();
    agrees();
    sends(0, MESSAGE_SERVICE_DISCOVERY_RESPONSE, services);
    hears();
  }
  void answersOpen(int channel, MessageStatus status = STATUS_SUCCESS) {
    ChannelOpenResponse answer;
    answer.set_status(status);
    sends(channel, MESSAGE_CHANNEL_OPEN_RESPONSE, answer, CONTROL | ENCRYPTED);
  }

  TlsClient& tls() { return tls_; }

 private:
  Bytes encipher(const Bytes& wire) {
    WireFrame one = parseFrame(wire);
    if (!tls_.established() || (one.flags & ENCRYPTED) == 0) return wire;
    const Bytes records = tls_.encrypt(one.payload);
    return one.kind() == FIRST ? firstFrame(one.channel, one.flags, one.totalLength, records)
                               : frame(one.channel, one.flags, records);
  }

  phone::PhoneLink* phone_;
  TlsClient tls_;
};

/// Credentials of a phone that the hand-made head unit trusts.
inline phone::Credentials phoneCredentials() {
  return {credentials().root, credentials().phone.certificate, credentials().phone.key};
}

inline phone::LinkOptions linkOptions() {
  phone::LinkOptions options;
  options.credentials = phoneCredentials();
  return options;
}

}  // namespace test
