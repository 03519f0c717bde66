#include "phone/Microphone.h"

#include <utility>

namespace phone {

namespace {

constexpr std::size_t timestampSize = 8;

}  // namespace

Microphone::Microphone(PhoneLink* link, int maxUnacked, PcmSinkFactory make, Problem problem)
    : link_(link), maxUnacked_(maxUnacked), make_(std::move(make)), problem_(std::move(problem)) {}

Microphone::~Microphone() {
  if (channel_ != 0) link_->attach(channel_, nullptr);
}

void Microphone::open(std::uint8_t channel, const Service& service) {
  channel_ = channel;
  state_ = State::opening;
  format_ = service.media_source_service().audio_config();
  link_->openChannel(channel, service.id(), this);
}

void Microphone::onOpened() {
  MicrophoneRequest request;
  request.set_open(true);
  request.set_max_unacked(maxUnacked_);
  link_->send(channel_, MESSAGE_MICROPHONE_REQUEST, request);
}

void Microphone::close() {
  if (state_ != State::opening && state_ != State::open) return;
  const bool asked = link_->channelState(channel_) == ChannelState::open;
  state_ = state_ == State::open ? State::closing : State::over;
  if (!asked) return;
  MicrophoneRequest request;
  request.set_open(false);
  link_->send(channel_, MESSAGE_MICROPHONE_REQUEST, request);
}

void Microphone::onMessage(const Message& message) {
  switch (message.type()) {
    case MESSAGE_MICROPHONE_RESPONSE: return onResponse(message);
    case MESSAGE_MEDIA_DATA: return onSound(message);
    case MESSAGE_UNEXPECTED_MESSAGE:
      return fail(Side::headUnit, "does not accept a message to its microphone",
                  "the service that was opened may be another than its list says");
    default: return;
  }
}

void Microphone::onResponse(const Message& message) {
  if (state_ != State::opening) return;
  const auto response = message.as<MicrophoneResponse>();
  if (!response) {
    return fail(Side::headUnit, "its MicrophoneResponse does not parse",
                "a required field is missing, or it is damaged");
  }
  if (response->status() != STATUS_SUCCESS) {
    return fail(Side::headUnit,
                "does not open its microphone (status " + std::to_string(response->status()) + ")",
                "it may have none, or it is in use");
  }
  if (!isPlayable(format_)) {
    return fail(Side::headUnit, "its microphone has a format that cannot be recorded",
                "it must have 16 bits, 8000 to 192000 Hz and at most 8 channels");
  }
  std::string error;
  sink_ = make_(static_cast<int>(format_.sampling_rate()), static_cast<int>(format_.number_of_channels()),
                &error);
  if (!sink_) return fail(Side::phone, error, "name another file");
  sessionId_ = response->session_id();
  state_ = State::open;
}

void Microphone::onSound(const Message& message) {
  if (state_ != State::open && state_ != State::closing) return;
  // Whatever becomes of it, it no longer counts against the limit.
  acknowledge();
  const std::size_t sampleSize = std::size_t{2} * format_.number_of_channels();
  if (message.bodySize() < timestampSize || (message.bodySize() - timestampSize) % sampleSize != 0) {
    ++stats_.damaged;
    return;
  }
  const std::size_t length = message.bodySize() - timestampSize;
  ++stats_.messages;
  stats_.bytes += length;
  if (length == 0 || sink_(message.body() + timestampSize, length)) return;
  close();
  fail(Side::phone, "cannot write the microphone's sound any further", "free some room or name another file");
}

void Microphone::acknowledge() {
  Ack ack;
  ack.set_session_id(sessionId_);
  ack.set_ack(1);
  link_->send(channel_, MESSAGE_ACK, ack);
}

void Microphone::onRefused(MessageStatus status) {
  fail(Side::headUnit, "refused the microphone's channel (status " + std::to_string(status) + ")",
       "the service may be in use already");
}

void Microphone::onClosed() {
  if (link_->end()) {
    state_ = State::over;
  } else {
    fail(Side::headUnit, "closed the microphone's channel", "its own messages may tell the reason");
  }
}

void Microphone::fail(Side side, const std::string& what, const std::string& advice) {
  if (state_ == State::over) return;
  state_ = State::over;
  if (problem_) problem_({false, side, what, advice});
}

}  // namespace phone
