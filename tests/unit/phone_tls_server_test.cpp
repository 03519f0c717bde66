#include "phone/TlsServer.h"

#include <gmock/gmock.h>

#include "phone_head_unit.h"

namespace test {
namespace {

using phone::TlsServer;
using Step = TlsServer::Step;
using testing::HasSubstr;

struct PhoneTlsServer : testing::Test {
  std::string error;
  std::unique_ptr<TlsServer> server = TlsServer::create(phoneCredentials(), {}, &error);

  Step shake(const Bytes& in, Bytes* out) {
    phone::Bytes flight;
    const Step step = server->handshake(in.data(), in.size(), &flight);
    *out = flight;
    return step;
  }
  Step shakeHands(TlsClient* client) {
    Bytes flight;
    Step step = shake(client->handshake(), &flight);
    while (step == Step::proceeding) step = shake(client->handshake(flight), &flight);
    last = flight;
    client->handshake(flight);
    return step;
  }
  Bytes encrypted(const Bytes& plain) { return server->encrypt(plain.data(), plain.size()); }
  Bytes last;  ///< The server's last flight.
};

TEST_F(PhoneTlsServer, SendsEachFlightWhole) {
  TlsClient client(credentials().headUnit);
  Bytes flight;
  EXPECT_EQ(shake(client.handshake(), &flight), Step::proceeding);
  const Bytes reply = client.handshake(flight);
  EXPECT_FALSE(reply.empty()) << "the client must be able to answer the first flight without a second one";
  EXPECT_EQ(shake(reply, &flight), Step::established);
  EXPECT_FALSE(flight.empty());
  client.handshake(flight);
  EXPECT_TRUE(client.established());
}

TEST_F(PhoneTlsServer, SpeaksTls12WithAnAeadCipher) {
  TlsClient client(credentials().headUnit);
  ASSERT_EQ(shakeHands(&client), Step::established);
  EXPECT_STREQ(SSL_get_version(client.ssl()), "TLSv1.2");
  EXPECT_THAT(server->cipher(), HasSubstr("GCM"));
  EXPECT_FALSE(server->peerName().empty());
}

TEST_F(PhoneTlsServer, BytesGoBothWays) {
  TlsClient client(credentials().headUnit);
  ASSERT_EQ(shakeHands(&client), Step::established);
  const Bytes sent = pattern(16128);
  EXPECT_EQ(client.decrypt(encrypted(sent)), sent);
  phone::Bytes plain;
  ASSERT_TRUE(server->decrypt(client.encrypt(sent), &plain));
  EXPECT_EQ(Bytes(plain), sent);
}

TEST_F(PhoneTlsServer, ReadsSeveralRecordsAtOnce) {
  TlsClient client(credentials().headUnit);
  ASSERT_EQ(shakeHands(&client), Step::established);
  const Bytes first = client.encrypt(bytes("01 02"));
  const Bytes second = client.encrypt(bytes("03"));
  phone::Bytes plain;
  ASSERT_TRUE(server->decrypt(first + second, &plain));
  EXPECT_EQ(Bytes(plain), bytes("01 02 03"));
}

TEST_F(PhoneTlsServer, RefusesAClientWithoutACertificate) {
  TlsClient client;
  EXPECT_EQ(shakeHands(&client), Step::failed);
  EXPECT_FALSE(server->error().empty());
  EXPECT_EQ(part(last, 0, 1), bytes("15")) << "an alert tells the client";
}

TEST_F(PhoneTlsServer, RefusesAStrangerAndSaysWhy) {
  TlsClient client(credentials().strangerHeadUnit);
  EXPECT_EQ(shakeHands(&client), Step::failed);
  EXPECT_THAT(server->error(), HasSubstr("unable to get local issuer certificate"));
}

TEST_F(PhoneTlsServer, TakesAnyClientWhenToldSo) {
  phone::TlsOptions options;
  options.verifyClient = false;
  server = TlsServer::create(phoneCredentials(), options, &error);
  TlsClient client;
  EXPECT_EQ(shakeHands(&client), Step::established);
  EXPECT_EQ(server->peerName(), "");
}

TEST_F(PhoneTlsServer, RefusesWhatIsNoTls) {
  Bytes flight;
  EXPECT_EQ(shake(bytes("16 03 03 00 04 FF FF FF FF"), &flight), Step::failed);
  EXPECT_FALSE(server->error().empty());
}

TEST_F(PhoneTlsServer, RefusesAPayloadThatIsNotWholeRecords) {
  TlsClient client(credentials().headUnit);
  ASSERT_EQ(shakeHands(&client), Step::established);
  const Bytes record = client.encrypt(bytes("01 02"));
  phone::Bytes plain;
  for (std::size_t size = 0; size < record.size(); ++size) {
    EXPECT_FALSE(server->decrypt(part(record, 0, size), &plain)) << size << " bytes";
  }
  EXPECT_FALSE(server->decrypt(record + bytes("17"), &plain));
  EXPECT_THAT(server->error(), HasSubstr("whole TLS records"));
}

TEST_F(PhoneTlsServer, RefusesADamagedRecord) {
  TlsClient client(credentials().headUnit);
  ASSERT_EQ(shakeHands(&client), Step::established);
  Bytes record = client.encrypt(bytes("01 02"));
  record.back() ^= 1;
  phone::Bytes plain;
  EXPECT_FALSE(server->decrypt(record, &plain));
  EXPECT_FALSE(server->error().empty());
}

TEST_F(PhoneTlsServer, TellsThatTlsWasClosed) {
  TlsClient client(credentials().headUnit);
  ASSERT_EQ(shakeHands(&client), Step::established);
  SSL_shutdown(client.ssl());
  phone::Bytes plain;
  EXPECT_FALSE(server->decrypt(client.handshake(), &plain));
  EXPECT_EQ(server->error(), "TLS was closed");
}

TEST_F(PhoneTlsServer, TellsWhatIsWrongWithItsCredentials) {
  auto reason = [this](const std::string& root, const std::string& certificate, const std::string& key) {
    EXPECT_EQ(TlsServer::create({root, certificate, key}, {}, &error), nullptr);
    return error;
  };
  const TestCredentials& good = credentials();
  EXPECT_THAT(reason("", good.phone.certificate, good.phone.key), HasSubstr("root"));
  EXPECT_THAT(reason(good.root, "no PEM", good.phone.key), HasSubstr("phone's certificate"));
  EXPECT_THAT(reason(good.root, good.phone.certificate, "no PEM"), HasSubstr("private key"));
  EXPECT_THAT(reason(good.root, good.phone.certificate, good.otherKey), HasSubstr("does not belong"));
}

TEST_F(PhoneTlsServer, RefusesACipherListThatNamesNone) {
  phone::TlsOptions options;
  options.ciphers = "NO-SUCH-CIPHER";
  EXPECT_EQ(TlsServer::create(phoneCredentials(), options, &error), nullptr);
  EXPECT_THAT(error, HasSubstr("NO-SUCH-CIPHER"));
}

}  // namespace
}  // namespace test
