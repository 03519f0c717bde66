#include "AudioSink.h"

#include "Log.h"

AudioSink::AudioSink(int id, MessageRouter* messageRouter,
                     const shared_ptr<IAudioSinkCallbacks>& sinkCallbacks)
    : MediaSinkBase(id, messageRouter), callbacks(sinkCallbacks) {}

AudioSink::~AudioSink() = default;

int AudioSink::addSupportedConfiguration(unsigned int samplingRate, unsigned int numberOfBits,
                                         unsigned int numberOfChannels) {
  const shared_ptr<AudioConfiguration> configuration(new AudioConfiguration());
  configuration->set_sampling_rate(samplingRate);
  configuration->set_number_of_bits(numberOfBits);
  configuration->set_number_of_channels(numberOfChannels);
  audioConfigurations.push_back(configuration);
  return static_cast<int>(audioConfigurations.size()) - 1;
}

unsigned int AudioSink::getNumberOfConfigurations() {
  return static_cast<unsigned int>(audioConfigurations.size());
}

void AudioSink::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  MediaSinkService* const sink = service->mutable_media_sink_service();
  sink->set_available_type(static_cast<MediaCodecType>(codecType));
  sink->set_audio_type(streamType);
  for (const shared_ptr<AudioConfiguration>& configuration : audioConfigurations) {
    *sink->add_audio_configs() = *configuration;
  }
}

int AudioSink::handleSetup(int mediaCodecType) {
  if (callbacks->setup(mediaCodecType) != 0) return STATUS_INVALID_CONFIGURATION;
  sendConfig(Config::STATUS_READY);
  return STATUS_SUCCESS;
}

void AudioSink::handleDataAvailable(unsigned long long timestamp, shared_ptr<IoBuffer> const& buffer,
                                    unsigned int offset) {
  callbacks->dataAvailable(sessionId, timestamp, buffer, buffer->content() + offset, buffer->size() - offset);
}

void AudioSink::handleCodecConfig(void* data, unsigned int length) { callbacks->codecConfig(data, length); }

int AudioSink::handleMediaConfiguration(int) { return STATUS_SUCCESS; }

bool AudioSink::handleVideoFocusRequest(VideoFocusRequestNotification const&) { return false; }

void AudioSink::playbackStart(int session) {
  print_critical_i("[LHU] AudioSink : playbackStart : %s", Log::getAudioStreamTypeString(streamType));
  callbacks->playbackStart(session);
}

void AudioSink::playbackStop(int session) {
  print_critical_i("[LHU] AudioSink : playbackStop : %s", Log::getAudioStreamTypeString(streamType));
  callbacks->playbackStop(session);
}
