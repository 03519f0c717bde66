#include "MediaSinkBase.h"

#include "BigEndian.h"
#include "Log.h"
#include "Message.h"

namespace {

constexpr unsigned int TIMESTAMP_OFFSET = MESSAGE_TYPE_SIZE;
constexpr unsigned int MEDIA_OFFSET = TIMESTAMP_OFFSET + 8;

}  // namespace

MediaSinkBase::MediaSinkBase(int id, MessageRouter* messageRouter)
    : ProtocolEndpointBase(id, messageRouter, false) {}

MediaSinkBase::~MediaSinkBase() = default;

int MediaSinkBase::routeMessage(unsigned char, unsigned short type, const shared_ptr<IoBuffer>& message) {
  switch (type) {
    case MESSAGE_MEDIA_DATA: return handleMediaData(message);
    case MESSAGE_CODEC_CONFIG: return handleCodecConfigMessage(message);
    case MESSAGE_SETUP: return handleRecord(this, message, &MediaSinkBase::handleSetupMessage);
    case MESSAGE_START: return handleRecord(this, message, &MediaSinkBase::handleStart);
    case MESSAGE_STOP: return handleRecord(this, message, &MediaSinkBase::handleStop);
    case MESSAGE_VIDEO_FOCUS_REQUEST_NOTIFICATION:
      return handleRecord(this, message, &MediaSinkBase::handleVideoFocusMessage);
  }
  print_critical_i("[LHU] Failed to dispatch message of type %d size=%lu", type,
                   static_cast<unsigned long>(message->size()));
  return STATUS_UNEXPECTED_MESSAGE;
}

int MediaSinkBase::handleMediaData(const shared_ptr<IoBuffer>& message) {
  if (!isLongEnough(message->size(), MEDIA_OFFSET)) return STATUS_UNEXPECTED_MESSAGE;
  handleDataAvailable(readBigEndian64(message->content() + TIMESTAMP_OFFSET), message, MEDIA_OFFSET);
  return STATUS_SUCCESS;
}

int MediaSinkBase::handleCodecConfigMessage(const shared_ptr<IoBuffer>& message) {
  handleCodecConfig(messageBody(message), messageBodySize(message));
  return STATUS_SUCCESS;
}

int MediaSinkBase::handleSetupMessage(Setup const& setup) { return handleSetup(setup.type()); }

int MediaSinkBase::handleStart(Start const& start) {
  sessionId = start.session_id();
  const int status = handleMediaConfiguration(static_cast<int>(start.configuration_index()));
  if (status != STATUS_SUCCESS) return status;
  playbackStart(sessionId);
  return STATUS_SUCCESS;
}

int MediaSinkBase::handleStop(Stop const&) {
  playbackStop(sessionId);
  return STATUS_SUCCESS;
}

int MediaSinkBase::handleVideoFocusMessage(VideoFocusRequestNotification const& request) {
  return handleVideoFocusRequest(request) ? STATUS_SUCCESS : STATUS_UNEXPECTED_MESSAGE;
}

bool MediaSinkBase::ackFrames(int session, unsigned int count) {
  Ack acknowledgement;
  acknowledgement.set_session_id(session);
  acknowledgement.set_ack(count);
  return sendRecord(MESSAGE_ACK, acknowledgement) != STATUS_SUCCESS;
}

void MediaSinkBase::sendConfig(int status) {
  Config config;
  config.set_status(static_cast<Config_Status>(status));
  config.set_max_unacked(static_cast<unsigned int>(maxUnacked));
  const shared_ptr<const std::vector<unsigned int>> allowed = allowedConfigurations.get();
  for (const unsigned int index : *allowed) config.add_configuration_indices(index);
  if (allowed->empty()) {
    const unsigned int count = getNumberOfConfigurations();
    for (unsigned int index = 0; index < count; ++index) config.add_configuration_indices(index);
  }
  sendRecord(MESSAGE_CONFIG, config);
}

bool MediaSinkBase::resetAllowedConfigurations(unsigned int* indices, unsigned int count) {
  const unsigned int available = getNumberOfConfigurations();
  if (available < count) return false;
  for (unsigned int i = 0; i < count; ++i) {
    if (indices[i] >= available) return false;
  }
  allowedConfigurations.set(count == 0 ? new std::vector<unsigned int>()
                                       : new std::vector<unsigned int>(indices, indices + count));
  return true;
}
