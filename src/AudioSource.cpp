#include "AudioSource.h"

#include <climits>
#include <cstring>

#include "BigEndian.h"
#include "Message.h"

namespace {

constexpr unsigned int TIMESTAMP_OFFSET = MESSAGE_TYPE_SIZE;
constexpr unsigned int AUDIO_OFFSET = TIMESTAMP_OFFSET + 8;

}  // namespace

AudioSource::AudioSource(int id, MessageRouter* messageRouter,
                         const shared_ptr<IAudioSourceCallbacks>& sourceCallbacks)
    : ProtocolEndpointBase(id, messageRouter, false), callbacks(sourceCallbacks) {}

AudioSource::~AudioSource() = default;

void AudioSource::setConfig(int newSamplingRate, int newNumberOfBits, int newNumberOfChannels) {
  samplingRate = newSamplingRate;
  numberOfBits = newNumberOfBits;
  numberOfChannels = newNumberOfChannels;
}

void AudioSource::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  MediaSourceService* const source = service->mutable_media_source_service();
  source->set_available_type(static_cast<MediaCodecType>(codecType));
  AudioConfiguration* const configuration = source->mutable_audio_config();
  configuration->set_sampling_rate(static_cast<unsigned int>(samplingRate));
  configuration->set_number_of_bits(static_cast<unsigned int>(numberOfBits));
  configuration->set_number_of_channels(static_cast<unsigned int>(numberOfChannels));
}

int AudioSource::routeMessage(unsigned char, unsigned short type, const shared_ptr<IoBuffer>& message) {
  switch (type) {
    case MESSAGE_ACK: return handleRecord(this, message, &AudioSource::handleAck);
    case MESSAGE_MICROPHONE_REQUEST:
      return handleRecord(this, message, &AudioSource::handleMicrophoneRequest);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}

int AudioSource::handleAck(Ack const& ack) {
  callbacks->ackReceived(ack.session_id(), ack.ack());
  return STATUS_SUCCESS;
}

int AudioSource::handleMicrophoneRequest(MicrophoneRequest const& request) {
  const int result = request.open()
                         ? callbacks->microphoneRequest(true, request.anc_enabled(), request.ec_enabled(),
                                                        request.max_unacked())
                         : callbacks->microphoneRequest(false, false, false, 0);
  if (result < 0) {
    microphoneResponse(result, 0);
    return STATUS_INVALID_STATE;
  }
  microphoneResponse(STATUS_SUCCESS, result);
  return STATUS_SUCCESS;
}

void AudioSource::microphoneResponse(int status, int sessionId) {
  MicrophoneResponse response;
  response.set_status(status);
  if (status == STATUS_SUCCESS) response.set_session_id(sessionId);
  sendRecord(MESSAGE_MICROPHONE_RESPONSE, response);
}

void AudioSource::send(unsigned long long timestamp, shared_ptr<IoBuffer> const& buffer) {
  const unsigned int length = buffer->size();
  if (length > UINT_MAX - AUDIO_OFFSET) return;  // no message can be that long
  IoBuffer message(AUDIO_OFFSET + length);
  writeBigEndian16(message.data, MESSAGE_MEDIA_DATA);
  writeBigEndian64(message.data + TIMESTAMP_OFFSET, timestamp);
  if (length > 0) memcpy(message.data + AUDIO_OFFSET, buffer->content(), length);
  sendMessage(message.content(), message.size());
}
