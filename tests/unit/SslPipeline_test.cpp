#include <gmock/gmock.h>
#include <openssl/err.h>

#include <memory>

#include "EndpointTest.h"
#include "FailingCalls.h"
#include "MemoryTransport.h"
#include "SecureLink.h"

// Ciphertext in and out of a wrapper that is connected, and what the pipelines do with what is not as it
// should be.

namespace test {
namespace {

using testing::Each;
using testing::MatchesRegex;

struct SslPipelineTest : testing::Test {
  LogCapture log;
  SecureLink link;
  SslWrapper& wrapper = link.controller().sslWrapper();

  SslPipelineTest() {
    link.bringUp();
    log.clear();
  }
  int enqueues(Bytes ciphertext) {
    return wrapper.decryptionPipelineEnqueue(ciphertext.data(), static_cast<unsigned int>(ciphertext.size()));
  }
  Bytes dequeues(unsigned int length) {
    Bytes plain = filled(length, 0xCC);
    result = wrapper.decryptionPipelineDequeue(plain.data(), length);
    return part(plain, 0, result > 0 ? static_cast<std::size_t>(result) : 0);
  }
  void enciphersAsEver() {
    Bytes plain = bytes("01 02 03");
    const int size = wrapper.encryptionPipelineEnqueue(plain.data(), 3);
    ASSERT_GT(size, 3);
    Bytes records = filled(static_cast<std::size_t>(size), 0);
    EXPECT_EQ(wrapper.encryptionPipelineDequeue(records.data(), static_cast<unsigned int>(size)), size);
    EXPECT_EQ(link.decrypted(records), plain);
  }
  int result = 0;
};

TEST_F(SslPipelineTest, EnciphersIntoRecordsThatThePhoneReads) {
  enciphersAsEver();
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(SslPipelineTest, TellsAllTheBytesThatWait) {
  Bytes plain = bytes("01 02 03");
  const int once = wrapper.encryptionPipelineEnqueue(plain.data(), 3);
  EXPECT_EQ(wrapper.encryptionPipelineEnqueue(plain.data(), 3), 2 * once);
}

TEST_F(SslPipelineTest, AFullFragmentFitsIntoOneRecord) {
  Bytes plain = pattern(FRAGMENT);
  const int size = wrapper.encryptionPipelineEnqueue(plain.data(), FRAGMENT);
  Bytes records = filled(static_cast<std::size_t>(size), 0);
  wrapper.encryptionPipelineDequeue(records.data(), static_cast<unsigned int>(size));
  EXPECT_EQ(part(records, 3, 2), bigEndian16(static_cast<std::uint16_t>(size - 5)));
}

TEST_F(SslPipelineTest, EncipheringNothingFailsWithALine) {
  unsigned char nothing = 0;
  EXPECT_LT(wrapper.encryptionPipelineEnqueue(&nothing, 0), 1);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Failed to write data to mSsl!"));
}

TEST_F(SslPipelineTest, FetchingCiphertextThatIsNotThereFailsWithALine) {
  unsigned char byte = 0;
  EXPECT_LT(wrapper.encryptionPipelineDequeue(&byte, 1), 0);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Failed to read from encryption pipeline."));
}

TEST_F(SslPipelineTest, ARecordIsLaidWhereItWillBeWantedEvenOverItsPlaintext) {
  for (const std::size_t size : {3UL, FRAGMENT, 5000UL, FRAGMENT}) {
    const Bytes plain = pattern(size);
    Bytes place = plain + filled(SslWrapper::MOST_EXPANSION, 0xCC);
    const int count = wrapper.encryptionPipelineEnqueue(
        place.data(), static_cast<unsigned int>(size), place.data(), static_cast<unsigned int>(place.size()));
    EXPECT_EQ(wrapper.encryptionPipelinePlaced(), count);
    const Bytes laid = part(place, 0, static_cast<std::size_t>(count));
    EXPECT_EQ(wrapper.encryptionPipelineDequeue(place.data(), static_cast<unsigned int>(count)), count);
    EXPECT_EQ(wrapper.encryptionPipelinePlaced(), 0);
    EXPECT_EQ(part(place, 0, laid.size()), laid);
    EXPECT_THAT(part(place, laid.size()), Each(0xCC)) << "nothing else was touched";
    EXPECT_EQ(link.decrypted(laid), plain);
  }
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(SslPipelineTest, ALaidRecordCanBeFetchedToAnotherPlaceAndInPieces) {
  auto place = std::make_unique<Bytes>(filled(1000, 1));
  const int count = wrapper.encryptionPipelineEnqueue(place->data(), 3, place->data(), 1000);
  Bytes fetched = filled(static_cast<std::size_t>(count), 0);
  EXPECT_EQ(wrapper.encryptionPipelineDequeue(fetched.data(), 5), 5);
  EXPECT_EQ(wrapper.encryptionPipelineDequeue(fetched.data() + 5, 1000), count - 5);
  place.reset();  // needed no longer
  EXPECT_EQ(link.decrypted(fetched), bytes("01 01 01"));
  EXPECT_LT(wrapper.encryptionPipelineDequeue(fetched.data(), 1), 0);
  enciphersAsEver();
}

TEST_F(SslPipelineTest, ARecordForWhichThePlaceIsTooSmallIsKept) {
  Bytes plain = bytes("01 02 03");
  const int size = wrapper.encryptionPipelineEnqueue(plain.data(), 3);
  Bytes records = filled(2 * static_cast<std::size_t>(size), 0);
  wrapper.encryptionPipelineDequeue(records.data(), static_cast<unsigned int>(size));

  Bytes place = filled(static_cast<std::size_t>(size) - 1, 0xCC);
  EXPECT_EQ(
      wrapper.encryptionPipelineEnqueue(plain.data(), 3, place.data(), static_cast<unsigned int>(size) - 1),
      size);
  EXPECT_EQ(wrapper.encryptionPipelinePlaced(), 0);
  EXPECT_THAT(place, Each(0xCC));
  EXPECT_EQ(wrapper.encryptionPipelineDequeue(records.data() + size, 1000), size);
  EXPECT_EQ(link.decrypted(records), bytes("01 02 03 01 02 03"));
}

TEST_F(SslPipelineTest, NothingIsLaidWhileOlderCiphertextWaits) {
  Bytes plain = bytes("01 02 03");
  Bytes place = filled(1000, 0xCC);
  const int once = wrapper.encryptionPipelineEnqueue(plain.data(), 3);
  EXPECT_EQ(wrapper.encryptionPipelineEnqueue(plain.data(), 3, place.data(), 1000), 2 * once);
  EXPECT_EQ(wrapper.encryptionPipelinePlaced(), 0);
  EXPECT_THAT(place, Each(0xCC));
  Bytes records = filled(2 * static_cast<std::size_t>(once), 0);
  EXPECT_EQ(wrapper.encryptionPipelineDequeue(records.data(), 1000), 2 * once);
  EXPECT_EQ(link.decrypted(records), bytes("01 02 03 01 02 03"));
}

TEST_F(SslPipelineTest, WhatIsWrittenBehindALaidRecordIsKeptBehindIt) {
  Bytes plain = bytes("01 02 03");
  Bytes place = filled(1000, 0xCC);
  const int once = wrapper.encryptionPipelineEnqueue(plain.data(), 3, place.data(), 1000);
  EXPECT_EQ(wrapper.encryptionPipelineEnqueue(plain.data(), 3, place.data() + 500, 500), 2 * once);
  EXPECT_EQ(wrapper.encryptionPipelinePlaced(), once);
  EXPECT_THAT(part(place, static_cast<std::size_t>(once)), Each(0xCC));
  Bytes records = filled(2 * static_cast<std::size_t>(once), 0);
  EXPECT_EQ(wrapper.encryptionPipelineDequeue(records.data(), 1000), 2 * once);
  EXPECT_EQ(link.decrypted(records), bytes("01 02 03 01 02 03"));
}

TEST_F(SslPipelineTest, OfSeveralRecordsNoneIsLaidOverThePlaintextOfTheNext) {
  const Bytes plain = pattern(20000);
  Bytes place = plain + filled(1000, 0xCC);
  const int count = wrapper.encryptionPipelineEnqueue(place.data(), 20000, place.data() + 4, 20000);
  EXPECT_EQ(wrapper.encryptionPipelinePlaced(), 0);
  Bytes records = filled(static_cast<std::size_t>(count), 0);
  EXPECT_EQ(wrapper.encryptionPipelineDequeue(records.data(), static_cast<unsigned int>(count)), count);
  EXPECT_EQ(link.decrypted(records), plain);
}

TEST_F(SslPipelineTest, APlaceIsForgottenWhenEncipheringFails) {
  auto place = std::make_unique<Bytes>(filled(1000, 0xCC));
  EXPECT_LT(wrapper.encryptionPipelineEnqueue(place->data(), 0, place->data(), 1000), 1);
  EXPECT_THAT(*place, Each(0xCC));
  place.reset();
  enciphersAsEver();
}

TEST_F(SslPipelineTest, DeciphersWhatThePhoneSends) {
  const Bytes records = link.encrypted(bytes("01 02 03"));
  EXPECT_EQ(enqueues(records), static_cast<int>(records.size())) << "an upper limit";
  EXPECT_EQ(dequeues(100), bytes("01 02 03"));
  EXPECT_EQ(wrapper.decryptionPipelinePending(), 0);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(SslPipelineTest, APlaintextCanBeFetchedInPieces) {
  enqueues(link.encrypted(bytes("01 02 03")));
  EXPECT_EQ(dequeues(1), bytes("01"));
  EXPECT_EQ(wrapper.decryptionPipelinePending(), 2);
  EXPECT_EQ(dequeues(10), bytes("02 03"));
}

TEST_F(SslPipelineTest, TakingNoCiphertextFailsWithALine) {
  EXPECT_LT(enqueues({}), 1);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Failed to write data to the read bio!"));
}

TEST_F(SslPipelineTest, HandshakeMessagesOnALinkThatIsUpDoNotPileUp) {
  IoBuffer out;
  Bytes noise = filled(600000, 0x55);
  for (int i = 0; i < 3; ++i) wrapper.handshake(noise.data(), 600000, &out);
  log.clear();
  const Bytes records = link.encrypted(bytes("01 02 03"));
  EXPECT_EQ(enqueues(records), static_cast<int>(records.size()));
  EXPECT_THAT(log.critical(), ElementsAre("[LHU] Throwing away 1048576 bytes"));
  EXPECT_EQ(dequeues(100), bytes("01 02 03"));
}

TEST_F(SslPipelineTest, ARecordOfASecondHandshakeIsRefusedAndHarmsNothing) {
  const Bytes handshake = bytes("16 03 03 00 04 00 00 00 00");
  EXPECT_LT(enqueues(handshake), 1);
  EXPECT_LT(enqueues(bytes("17 03 03 00 02 AA BB") + handshake), 1) << "behind others, too";
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Failed to write data to the read bio!",
                                     "critical [LHU] Failed to write data to the read bio!"));
  Bytes records = link.encrypted(bytes("01 02 03"));
  records = records + link.encrypted(filled(0x16, 0x16));
  EXPECT_EQ(enqueues(records), static_cast<int>(records.size()));
  EXPECT_EQ(dequeues(3), bytes("01 02 03"));
  EXPECT_EQ(dequeues(100), filled(0x16, 0x16));
  enciphersAsEver();
}

TEST_F(SslPipelineTest, WhatAnEarlierFrameLeftOverIsThrownAway) {
  const Bytes records = link.encrypted(bytes("01 02 03"));
  enqueues(part(records, 0, 10));
  EXPECT_GT(enqueues(records), 0);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Throwing away 10 bytes"));
  EXPECT_EQ(dequeues(100), bytes("01 02 03")) << "it starts clean";
}

TEST_F(SslPipelineTest, WhatAFetchHasTakenInIsNotThereToBeThrownAway) {
  const Bytes records = link.encrypted(bytes("01 02 03"));
  enqueues(part(records, 0, 10));
  dequeues(100);
  EXPECT_LT(result, 0) << "to a frame this is the end of the link";
  log.clear();
  EXPECT_GT(enqueues(part(records, 10)), 0);
  EXPECT_THAT(log.all(), IsEmpty());
  EXPECT_EQ(dequeues(100), bytes("01 02 03"));
}

TEST_F(SslPipelineTest, AReadThatWasRetriedGoesOnUntilOpenSslWantsMore) {
  const Bytes first = link.encrypted(bytes("01 02 03"));
  const Bytes second = link.encrypted(bytes("AA"));
  enqueues(first + second);
  Bytes plain = filled(4, 0xCC);
  {
    const FailingCall failing("BIO_read");  // for a reason other than that more input is wanted
    EXPECT_LT(wrapper.decryptionPipelineDequeue(plain.data(), 4), 0);
    EXPECT_EQ(failing.calls(), 4);
  }
  EXPECT_EQ(plain, bytes("AA 02 03 CC")) << "each read lands on the same bytes";
  EXPECT_THAT(log.critical(), ElementsAre(testing::EndsWith("sslError=5"), testing::EndsWith("sslError=2")));
}

TEST_F(SslPipelineTest, PartOfARecordWantsMore) {
  const Bytes records = link.encrypted(bytes("01 02 03"));
  enqueues(part(records, 0, records.size() - 1));
  dequeues(100);
  EXPECT_LT(result, 0);
  EXPECT_THAT(log.all(),
              ElementsAre(MatchesRegex("critical \\[LHU\\] Detailed error=.* file=.* line=.* sslError=2")));
}

TEST_F(SslPipelineTest, ADamagedRecordFailsWithTheReasonOfOpenSsl) {
  Bytes records = link.encrypted(bytes("01 02 03"));
  records.back() ^= 1;
  enqueues(records);
  dequeues(100);
  EXPECT_LT(result, 0);
  EXPECT_THAT(log.all(),
              ElementsAre(MatchesRegex("critical \\[LHU\\] Detailed error=error:[0-9A-F]+:.+ file=.+\\.c "
                                       "line=[1-9][0-9]* sslError=1")));
}

TEST_F(SslPipelineTest, TheAlertThatAnswersADamagedRecordIsDropped) {
  Bytes records = link.encrypted(bytes("01 02 03"));
  records.back() ^= 1;
  enqueues(records);
  dequeues(100);
  unsigned char byte = 0;
  EXPECT_LT(wrapper.encryptionPipelineDequeue(&byte, 1), 0);
}

TEST_F(SslPipelineTest, AStaleErrorOfTheHostDoesNotShowAsTheReason) {
  const Bytes records = link.encrypted(bytes("01 02 03"));
  enqueues(part(records, 0, records.size() - 1));
  ERR_raise(ERR_LIB_USER, 1);
  dequeues(100);
  EXPECT_THAT(log.critical(),
              ElementsAre(MatchesRegex(
                  "\\[LHU\\] Detailed error=error:00000000:.* file=\\(null\\) line=0 sslError=2")));
}

/// Frames whose payload is TLS.
struct FrameEncryptionTest : SslPipelineTest {
  MockControllerCallbacks& host = link.host();

  /// A fatal alert: from now on this connection enciphers nothing.
  void breaksTls() {
    Bytes damaged = link.encrypted(bytes("00"));
    damaged.back() ^= 1;
    enqueues(damaged);
    dequeues(1);
  }
};

TEST_F(FrameEncryptionTest, AnEncryptedFrameIsDecipheredInItsOwnBuffer) {
  EXPECT_CALL(host, pingResponse(300));
  EXPECT_EQ(link.sendsEncrypted(0, bytes("00 0C 08 AC 02")), STATUS_SUCCESS);
  const Bytes wire = frame(0, ATOMIC | ENCRYPTED, link.encrypted(bytes("00 0C 08 01")));
  const shared_ptr<IoBuffer> buffer = link.receiver().allocateBuffer(static_cast<unsigned int>(wire.size()));
  std::copy(wire.begin(), wire.end(), buffer->data);
  EXPECT_CALL(host, pingResponse(1)).WillOnce([&] {
    EXPECT_EQ(Bytes(buffer->data + 4, 4), bytes("00 0C 08 01"));
    EXPECT_EQ(buffer->size(), 4U);
  });
  link.receiver().queueIncoming(buffer);
}

TEST_F(FrameEncryptionTest, SeveralRecordsInOneFrameAreOnePayload) {
  EXPECT_CALL(host, pingResponse(300));
  const Bytes first = link.encrypted(bytes("00 0C"));
  const Bytes second = link.encrypted(bytes("08 AC 02"));
  EXPECT_EQ(link.feeds(frame(0, ATOMIC | ENCRYPTED, first + second)), STATUS_SUCCESS);
}

TEST_F(FrameEncryptionTest, AFrameWithoutTheFlagIsTakenAsPlainAtAnyTime) {
  EXPECT_CALL(host, pingResponse(1));
  EXPECT_EQ(link.feeds(frame(0, ATOMIC, bytes("00 0C 08 01"))), STATUS_SUCCESS);
}

TEST_F(FrameEncryptionTest, ADamagedRecordIsAFramingError) {
  EXPECT_CALL(host, unrecoverableError());
  Bytes records = link.encrypted(bytes("00 0C 08 01"));
  records.back() ^= 1;
  EXPECT_EQ(link.feeds(frame(0, ATOMIC | ENCRYPTED, records)), STATUS_FRAMING_ERROR);
  EXPECT_THAT(log.critical(), ElementsAre(testing::EndsWith("sslError=1"),
                                          "[LHU] Failed to dequeue from decryption pipeline!",
                                          "[LHU] Sending Framing Error notification!"));
}

TEST_F(FrameEncryptionTest, PartOfARecordIsAFramingError) {
  EXPECT_CALL(host, unrecoverableError());
  const Bytes records = link.encrypted(bytes("00 0C 08 01"));
  EXPECT_EQ(link.feeds(frame(0, ATOMIC | ENCRYPTED, part(records, 0, 10))), STATUS_FRAMING_ERROR);
  EXPECT_EQ(log.critical()[1], "[LHU] Failed to dequeue from decryption pipeline!");
}

TEST_F(FrameEncryptionTest, BytesBehindTheLastRecordAreAFramingErrorAndNothingIsDelivered) {
  EXPECT_CALL(host, pingResponse).Times(0);
  EXPECT_CALL(host, unrecoverableError());
  const Bytes records = link.encrypted(bytes("00 0C 08 01")) + bytes("17 03 03");
  EXPECT_EQ(link.feeds(frame(0, ATOMIC | ENCRYPTED, records)), STATUS_FRAMING_ERROR);
}

TEST_F(FrameEncryptionTest, AnEncryptedFrameWithoutAPayloadIsAFramingError) {
  EXPECT_CALL(host, unrecoverableError());
  EXPECT_EQ(link.feeds(frame(0, ATOMIC | ENCRYPTED, {})), STATUS_FRAMING_ERROR);
  EXPECT_THAT(log.critical(), ElementsAre("[LHU] Failed to write data to the read bio!",
                                          "[LHU] Failed to enqueue into decryption pipeline!",
                                          "[LHU] Sending Framing Error notification!"));
}

TEST_F(FrameEncryptionTest, TheLengthOnTheWireIsOfTheCiphertextAndTheTotalLengthOfThePlainMessage) {
  Bytes whole = pattern(FRAGMENT + 10);
  link.router()->queueOutgoing(0, whole.data(), static_cast<unsigned int>(whole.size()));
  const std::vector<Bytes> wire = link.sentFrames();
  ASSERT_EQ(wire.size(), 2U);
  EXPECT_EQ(parseFrame(wire[0]).totalLength, FRAGMENT + 10);
  EXPECT_GT(parseFrame(wire[0]).payload.size(), FRAGMENT);
  EXPECT_EQ(link.decrypted(parseFrame(wire[0]).payload), part(whole, 0, FRAGMENT));
  EXPECT_EQ(link.decrypted(parseFrame(wire[1]).payload), part(whole, FRAGMENT));
}

TEST_F(FrameEncryptionTest, FramesOfAllSizesAreEncipheredOneAfterAnother) {
  IoBuffer out;
  for (const std::size_t size :
       {2UL, 2047UL, 2048UL, FRAGMENT, 2UL, FRAGMENT, FRAGMENT + 1, 3000UL, 3000UL}) {
    Bytes message = pattern(size);
    link.router()->queueOutgoing(0, message.data(), static_cast<unsigned int>(size));
    Bytes plain;
    while (plain.size() < size) {
      out.start = 1;
      ASSERT_TRUE(link.channels().extractEncodedFrame(&out));
      EXPECT_EQ(out.capacity, out.end);
      EXPECT_EQ(out.start, 0U);
      const Bytes payload = parseFrame(Bytes(out.content(), out.size())).payload;
      EXPECT_EQ(payload.size(), out.size() - (size > FRAGMENT && plain.empty() ? 8U : 4U));
      plain = plain + link.decrypted(payload);
    }
    EXPECT_EQ(plain, message);
  }
}

TEST_F(FrameEncryptionTest, AWholeMessageIsEncipheredInTheStorageThatItWasQueuedIn) {
  IoBuffer out;
  ChannelSet waiting;
  const shared_ptr<Channel> target(new Channel(1, 0, &waiting));
  const auto encipheredInItsStorage = [&](std::size_t size) {
    Bytes message = pattern(size);
    link.channels().messageToFrames(1, false, message.data(), static_cast<unsigned int>(size), target, true);
    const shared_ptr<Frame> first = target->dequeueOutgoing();
    while (target->hasOutgoing()) target->dequeueOutgoing();
    const unsigned char* const storage = first->buffer->data;
    link.channels().encodeFrame(first, &out);
    EXPECT_EQ(link.decrypted(parseFrame(Bytes(out.content(), out.size())).payload),
              part(message, 0, FRAGMENT));
    EXPECT_EQ(out.data == storage, !first->buffer) << "the frame has it no longer";
    EXPECT_EQ(out.data == storage, first->length == 0);
    return out.data == storage;
  };
  EXPECT_TRUE(encipheredInItsStorage(FRAGMENT));
  EXPECT_TRUE(encipheredInItsStorage(2048));
  EXPECT_FALSE(encipheredInItsStorage(64)) << "it is sooner copied";
  EXPECT_FALSE(encipheredInItsStorage(FRAGMENT + 1)) << "its other fragments lie there";
}

TEST_F(FrameEncryptionTest, AMessageMayLeaveBeforeItsSenderHasReturned) {
  Bytes wire;
  const EventAtPost posted([&] {
    IoBuffer out;
    EXPECT_TRUE(link.channels().extractEncodedFrame(&out));
    wire = Bytes(out.content(), out.size());
  });
  Bytes message = pattern(FRAGMENT);
  EXPECT_EQ(link.router()->queueOutgoing(0, message.data(), FRAGMENT), STATUS_SUCCESS);
  EXPECT_EQ(link.decrypted(parseFrame(wire).payload), message);
}

/// The cipher suites that differ in what they add to a message.
struct CipherTest : testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(, CipherTest,
                         testing::Values("ECDHE-ECDSA-AES256-GCM-SHA384", "ECDHE-ECDSA-CHACHA20-POLY1305",
                                         "ECDHE-ECDSA-AES128-SHA", "ECDHE-ECDSA-AES128-SHA256",
                                         "ECDHE-ECDSA-AES256-SHA384"));

TEST_P(CipherTest, MessagesOfAllSizesPassBothWays) {
  phone::TlsOptions options;
  options.ciphers = GetParam();
  SecureLink link(credentials().phone, credentials().root, options);
  link.bringUp();
  ASSERT_EQ(link.phone().cipher(), GetParam());
  IoBuffer out;
  for (const std::size_t size : {2UL, 2048UL, 2049UL, 2063UL, 5000UL, FRAGMENT - 1, FRAGMENT}) {
    Bytes message = pattern(size);
    link.router()->queueOutgoing(0, message.data(), static_cast<unsigned int>(size));
    ASSERT_TRUE(link.channels().extractEncodedFrame(&out));
    EXPECT_EQ(link.decrypted(parseFrame(Bytes(out.content(), out.size())).payload), message) << size;
  }
  EXPECT_CALL(link.host(), pingResponse(300));
  EXPECT_EQ(link.sendsEncrypted(0, bytes("00 0C 08 AC 02")), STATUS_SUCCESS);
}

TEST_F(FrameEncryptionTest, AFrameGoesOutBehindOlderCiphertextThatWaited) {
  Bytes older = pattern(5000);
  wrapper.encryptionPipelineEnqueue(older.data(), 5000);
  Bytes message = pattern(FRAGMENT);
  link.router()->queueOutgoing(0, message.data(), FRAGMENT);
  IoBuffer out;
  ASSERT_TRUE(link.channels().extractEncodedFrame(&out));
  const Bytes payload = parseFrame(Bytes(out.content(), out.size())).payload;
  EXPECT_EQ(link.decrypted(payload), older + message);
}

TEST_F(FrameEncryptionTest, RecordsStandInTheOrderOfTheFramesOnTheWire) {
  link.channels().registerChannel(1, 0);
  Bytes first = bytes("80 01");
  Bytes second = bytes("80 02");
  link.router()->queueOutgoing(0, first.data(), 2);
  link.router()->queueOutgoing(1, second.data(), 2);
  std::vector<Bytes> plain;
  for (const Bytes& wire : link.sentFrames()) plain.push_back(link.decrypted(parseFrame(wire).payload));
  EXPECT_THAT(plain, ElementsAre(second, first)) << "channel 0 was served last before";
}

TEST_F(FrameEncryptionTest, AHandshakeWithMoreInTheRecordOfItsLastMessageFails) {
  SecureLink late;
  late.acceptsVersion();
  late.sendsHandshake(late.nextFlight());
  const Bytes last = late.nextFlight();
  const FailingCall more("SSL_has_pending");
  late.sendsHandshake(last);
  EXPECT_EQ(more.calls(), 1);
  EXPECT_EQ(late.controller().sslWrapper().currentState(), SSL_WRAPPER_FAILED);
}

TEST_F(FrameEncryptionTest, AFrameQueuedBeforeTheHandshakeEndedIsEncryptedWhenItLeaves) {
  SecureLink late;
  late.acceptsVersion();
  const Bytes flight = late.nextFlight();
  late.controller().sendByeByeResponse();
  late.sendsHandshake(flight);
  // Its turn comes before that of the handshake message behind it.
  EXPECT_EQ(late.sentFrames().at(0), bytes("00 0B 00 02 00 10"));
}

TEST_F(FrameEncryptionTest, CiphertextThatCannotBeFetchedIsToldToTheHost) {
  EXPECT_CALL(host, unrecoverableError());
  const shared_ptr<Frame> empty(new Frame());
  empty->flags = ATOMIC | ENCRYPTED;  // no payload, so there is no ciphertext either
  IoBuffer out;
  link.channels().encodeFrame(empty, &out);
  EXPECT_EQ(Bytes(out.content(), out.size()), bytes("00 0B 00 00"));
  EXPECT_THAT(log.critical(), ElementsAre("[LHU] Failed to write data to mSsl!",
                                          "[LHU] Failed to read from encryption pipeline."));
  EXPECT_TRUE(link.channels().isRunning());
}

TEST_F(FrameEncryptionTest, AFrameBehindWhichTheHostStopsTheLinkIsNotWritten) {
  MemoryTransport transport(&link.receiver());
  EXPECT_CALL(host, unrecoverableError()).WillOnce([&] { transport.requestStop(); });
  transport.start();
  link.controller().sendPingRequest(1, false);
  transport.waitsForBytes();  // the writer still holds this frame, since a failure leaves it the former one
  breaksTls();
  link.controller().sendPingRequest(2, false);
  transport.waitForExit();
  EXPECT_EQ(transport.writes(), 1);
  EXPECT_EQ(transport.aborts(), 1) << "a write that was begun would have stopped the link once more";
}

TEST_F(FrameEncryptionTest, AFreshStartForgetsTheEncryption) {
  link.channels().init(link.router());
  link.channels().registerChannel(0, 0);
  link.controller().sendByeByeResponse();
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00 0B 00 02 00 10")));
}

TEST_F(FrameEncryptionTest, AFailedEncipheringTellsTheHostAndLeavesTheFormerFrame) {
  IoBuffer out;
  Bytes message = pattern(FRAGMENT);
  link.router()->queueOutgoing(0, message.data(), FRAGMENT);
  EXPECT_TRUE(link.channels().extractEncodedFrame(&out));
  const Bytes former(out.content(), out.content() + out.size());

  EXPECT_CALL(host, unrecoverableError());
  breaksTls();
  link.router()->queueOutgoing(0, message.data(), FRAGMENT);
  EXPECT_TRUE(link.channels().extractEncodedFrame(&out)) << "all the same";
  EXPECT_EQ(Bytes(out.content(), out.size()), former);
  EXPECT_TRUE(link.channels().isRunning());
  EXPECT_EQ(log.critical().back(), "[LHU] Failed to write data to mSsl!");
}

}  // namespace
}  // namespace test
