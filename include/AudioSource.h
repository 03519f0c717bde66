#pragma once

#include "IAudioSourceCallbacks.h"
#include "ProtocolEndpointBase.h"
#include "VantryExport.h"
#include "shared_ptr.h"

/// The microphone service, the one media channel on which the head unit is the sender: the phone opens and
/// closes the microphone, the host sends what it captures, the phone acknowledges.
///
///     media data message   0     2           10
///                          type  timestamp   audio bytes
///                          00 00 64 bits BE
///
/// Flow control lies between the host and the phone: the library counts nothing and holds nothing back, and
/// it does not keep whether the microphone is open.
class VANTRY_EXPORT AudioSource : public ProtocolEndpointBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter(). Keeps a reference to
  /// `sourceCallbacks`.
  AudioSource(int id, MessageRouter* messageRouter, const shared_ptr<IAudioSourceCallbacks>& sourceCallbacks);
  ~AudioSource() override;

  /// Before discovery: the codec to advertise, a MediaCodecType (initially MEDIA_CODEC_1). A number outside
  /// that enumeration ends the process at discovery.
  void setCodecType(int type) { codecType = type; }

  /// Before discovery: the one format on offer (initially all 0), in samples per second, bits per sample and
  /// channels. Nothing is checked, and nothing is sent.
  void setConfig(int newSamplingRate, int newNumberOfBits, int newNumberOfChannels);

  /// Any thread: sends the content of `buffer`, which is copied before the call returns, as one media data
  /// message. `timestamp` is passed on unchanged. Dropped while no channel is open; a closed microphone holds
  /// nothing back.
  void send(unsigned long long timestamp, shared_ptr<IoBuffer> const& buffer);

  /// Any thread: answers a microphone request; done by itself with the result of
  /// IAudioSourceCallbacks::microphoneRequest. `sessionId` travels only with a `status` of STATUS_SUCCESS.
  /// Dropped while no channel is open.
  void microphoneResponse(int status, int sessionId);

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;

 private:
  int handleAck(Ack const& ack);
  int handleMicrophoneRequest(MicrophoneRequest const& request);

  shared_ptr<IAudioSourceCallbacks> callbacks;
  int codecType = MEDIA_CODEC_1;
  int samplingRate = 0;
  int numberOfBits = 0;
  int numberOfChannels = 0;
};
