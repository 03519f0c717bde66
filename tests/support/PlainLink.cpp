#include "PlainLink.h"

namespace test {

PlainLink::PlainLink() : host_(new testing::NiceMock<MockControllerCallbacks>()) {
  receiver_.init(shared_ptr<IControllerCallbacks>(host_));
  manager_ = router()->manager();
}

PlainLink::~PlainLink() {
  receiver_.prepareShutdown();
  receiver_.shutdown();
}

void PlainLink::registers(ProtocolEndpointBase* endpoint) {
  EXPECT_TRUE(receiver_.registerService(endpoint));
}

int PlainLink::opens(int channel, int serviceId, int priority) {
  collect();
  const std::size_t before = collected_.size();
  ChannelOpenRequest request;
  request.set_priority(priority);
  request.set_service_id(serviceId);
  feeds(frame(channel, ATOMIC | CONTROL | ENCRYPTED, message(MESSAGE_CHANNEL_OPEN_REQUEST, request)));
  collect();
  ChannelOpenResponse response;
  if (collected_.size() == before) return -1;
  const Bytes answer = part(parseFrame(collected_[before]).payload, 2);
  collected_.erase(collected_.begin() + static_cast<std::ptrdiff_t>(before));
  EXPECT_TRUE(response.ParseFromArray(answer.data(), static_cast<int>(answer.size())));
  return response.status();
}

int PlainLink::closes(int channel) {
  return feeds(frame(channel, ATOMIC | CONTROL | ENCRYPTED, message(MESSAGE_CHANNEL_CLOSE_NOTIFICATION)));
}

int PlainLink::sends(int channel, const Bytes& wholeMessage) {
  return feeds(frames(channel, ENCRYPTED, wholeMessage));
}

int PlainLink::sends(int channel, int type, const Bytes& body) { return sends(channel, message(type, body)); }

int PlainLink::sends(int channel, int type, const google::protobuf::MessageLite& record) {
  return sends(channel, message(type, record));
}

int PlainLink::feeds(const Bytes& wireFrame) {
  // A heap block of exactly this size, so that AddressSanitizer sees a byte too far.
  const shared_ptr<IoBuffer> buffer = receiver_.allocateBuffer(static_cast<unsigned int>(wireFrame.size()));
  std::copy(wireFrame.begin(), wireFrame.end(), buffer->content());
  return receiver_.queueIncoming(buffer);
}

int PlainLink::feeds(const std::vector<Bytes>& wireFrames) {
  int status = STATUS_SUCCESS;
  for (const Bytes& wireFrame : wireFrames) status = feeds(wireFrame);
  return status;
}

void PlainLink::collect() {
  IoBuffer out;
  while (manager_->extractEncodedFrame(&out)) collected_.emplace_back(out.content(), out.size());
}

std::vector<Bytes> PlainLink::sent(int channel) {
  collect();
  std::vector<Bytes> messages;
  std::vector<Bytes> others;
  for (const Bytes& wire : collected_) {
    const WireFrame piece = parseFrame(wire);
    if (piece.channel != channel) {
      others.push_back(wire);
    } else if ((piece.kind() & FIRST) != 0 || messages.empty()) {
      messages.push_back(piece.payload);
    } else {
      messages.back() = messages.back() + piece.payload;
    }
  }
  collected_ = others;
  return messages;
}

std::vector<Bytes> PlainLink::sentFrames() {
  collect();
  std::vector<Bytes> result;
  result.swap(collected_);
  return result;
}

}  // namespace test
