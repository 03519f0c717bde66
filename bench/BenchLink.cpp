#include "BenchLink.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "BigEndian.h"
#include "Log.h"

// The milestones of a link's start are of no interest here.
void print_debug_i(const char*, ...) {}
void print_critical_i(const char*, ...) {}

namespace {

constexpr unsigned char ATOMIC_PLAIN = FRAME_ATOMIC;
constexpr std::size_t HEADER = 4;

class SilentController : public IControllerCallbacks {
 public:
  void serviceDiscoveryRequest(const std::string&, const std::string&, const std::string&,
                               const std::string&) override {}
  void unrecoverableError() override {
    fprintf(stderr, "benchmark set-up failed: the link broke\n");
    exit(2);
  }
  void pingRequest(long long, bool) override {}
  void pingResponse(long long) override {}
  void navigationFocusRequest(NavFocusType) override {}
  void byeByeRequest(ByeByeReason) override {}
  void byeByeResponse() override {}
  void voiceSessionNotification(VoiceSessionStatus) override {}
  void audioFocusRequest(AudioFocusRequestType) override {}
  void authenticationCompleted(int) override {}
  void versionResponse(unsigned long long, unsigned long long) override {}
};

}  // namespace

BenchLink::BenchLink(Security security, int channels) {
  receiver_.init(shared_ptr<IControllerCallbacks>(new SilentController()));
  for (int id = 1; id <= std::min(channels, 254); ++id) {
    sinks_.push_back(std::make_unique<VideoSink>(id, receiver_.messageRouter(), callbacks_));
    receiver_.registerService(sinks_.back().get());
  }
  if (security == Security::tls) bringUp();
  for (const std::unique_ptr<VideoSink>& sink : sinks_) {
    openChannel(static_cast<unsigned char>(sink->id()), sink->id());
  }
}

BenchLink::~BenchLink() {
  receiver_.prepareShutdown();
  receiver_.shutdown();
}

void BenchLink::bringUp() {
  const BenchCredentials& credentials = benchCredentials();
  if (!receiver_.controller().setClientCreds(credentials.certificate, credentials.certificate,
                                             credentials.key)) {
    exit(2);
  }
  receiver_.start();
  takeFrame();  // the version request
  sendPlain(MESSAGE_VERSION_RESPONSE, {0, 1, 0, 0, 0});
  bool done = false;
  while (!done) {
    const Bytes flight = takeFrame();
    phone_.putCiphertext(flight.data() + HEADER + 2, flight.size() - HEADER - 2);
    done = phone_.handshake();
    sendPlain(MESSAGE_SSL_HANDSHAKE, phone_.takeAllCiphertext());
  }
  takeFrame();  // the authentication's result
  encrypts_ = true;
}

void BenchLink::offer(ProtocolEndpointBase* endpoint, unsigned char channel) {
  receiver_.registerService(endpoint);
  openChannel(channel, endpoint->id());
}

void BenchLink::openChannel(unsigned char channel, int service) {
  ChannelOpenRequest request;
  request.set_priority(0);
  request.set_service_id(service);
  IoBuffer message;
  MessageRouter::marshallProto(MESSAGE_CHANNEL_OPEN_REQUEST, request, &message);
  receive(frame(channel, FRAME_ATOMIC | FRAME_FLAG_CONTROL, 0, message.content(), message.size()));
  takeFrame();  // the response
}

void BenchLink::deliver(unsigned char channel, const Bytes& message) {
  Bytes bytes;
  mediaFrame(channel, message, &bytes);
  receive(bytes);
}

Bytes BenchLink::takeFrame() {
  IoBuffer out;
  if (!receiver_.getEncodedFrame(&out)) exit(2);
  return Bytes(out.content(), out.content() + out.size());
}

void BenchLink::sendPlain(unsigned short type, const Bytes& body) {
  Bytes message(2);
  writeBigEndian16(message.data(), type);
  message.insert(message.end(), body.begin(), body.end());
  receive(frame(0, ATOMIC_PLAIN, 0, message.data(), message.size()));
}

Bytes BenchLink::frame(unsigned char channel, unsigned char flags, unsigned int total,
                       const unsigned char* data, std::size_t size) {
  Bytes bytes;
  writeFrame(channel, flags, total, data, size, &bytes);
  return bytes;
}

void BenchLink::writeFrame(unsigned char channel, unsigned char flags, unsigned int total,
                           const unsigned char* data, std::size_t size, Bytes* bytes) {
  const std::size_t header = total != 0 ? 8 : HEADER;
  bytes->resize(header + size + 256);
  (*bytes)[0] = channel;
  (*bytes)[1] = flags;
  const bool enciphered = encrypts_ && (flags & FRAME_FLAG_ENCRYPTED) != 0;
  std::size_t length = size;
  if (enciphered) {
    length = phone_.encrypt(data, size, bytes->data() + header, bytes->size() - header);
  } else {
    std::copy_n(data, size, bytes->data() + header);
  }
  writeBigEndian16(bytes->data() + 2, static_cast<unsigned short>(length));
  if (total != 0) writeBigEndian32(bytes->data() + 4, total);
  bytes->resize(header + length);
}

Bytes BenchLink::mediaFrame(unsigned char channel, std::size_t size) {
  Bytes bytes;
  mediaFrame(channel, Bytes(size, 0), &bytes);  // type 0 is media data; the rest is timestamp and content
  return bytes;
}

void BenchLink::mediaFrame(unsigned char channel, const Bytes& message, Bytes* bytes) {
  writeFrame(channel, FRAME_ATOMIC | FRAME_FLAG_ENCRYPTED, 0, message.data(), message.size(), bytes);
}

std::vector<Bytes> BenchLink::mediaFragments(unsigned char channel, std::size_t size) {
  const Bytes message(size, 0);
  std::vector<Bytes> frames;
  for (std::size_t offset = 0; offset < size; offset += MAX_FRAGMENT_PAYLOAD) {
    const std::size_t length = std::min<std::size_t>(size - offset, MAX_FRAGMENT_PAYLOAD);
    int kind = offset == 0 ? FRAME_FIRST : FRAME_MIDDLE;
    if (offset + length == size) kind |= FRAME_LAST;
    const unsigned int total = kind == FRAME_FIRST ? static_cast<unsigned int>(size) : 0;
    frames.push_back(frame(channel, static_cast<unsigned char>(kind | FRAME_FLAG_ENCRYPTED), total,
                           message.data() + offset, length));
  }
  return frames;
}

void BenchLink::receive(const Bytes& bytes) {
  const shared_ptr<IoBuffer> buffer = receiver_.allocateBuffer(static_cast<unsigned int>(bytes.size()));
  memcpy(buffer->data, bytes.data(), bytes.size());
  receiver_.queueIncoming(buffer);
}
