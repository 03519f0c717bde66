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
  /// `sourceCallbacks`, which must point to an object, until destruction.
  AudioSource(int id, MessageRouter* messageRouter, const shared_ptr<IAudioSourceCallbacks>& sourceCallbacks);
  ~AudioSource() override;

  /// Before discovery: the codec to advertise, a MediaCodecType (initially MEDIA_CODEC_1). A number outside
  /// that enumeration ends the process at discovery.
  void setCodecType(int type) { codecType = type; }

  /// Before discovery: the one format on offer (initially all 0), in samples per second, bits per sample and
  /// channels. Nothing is checked, and nothing is sent; the numbers travel as unsigned ones, so that a
  /// negative one arrives as a large one.
  void setConfig(int newSamplingRate, int newNumberOfBits, int newNumberOfChannels);

  /// Any thread: sends the content of `buffer`, which must point to an object and is copied before the call
  /// returns, as one media data message. `timestamp` is passed on unchanged. Dropped while no channel is
  /// open, and if it is longer than a message can be; a closed microphone holds nothing back.
  ///
  /// A block of at most 16118 bytes makes a message of one frame. A larger one makes a long message, and no
  /// other message of this service may get between its frames: see ProtocolEndpointBase. The answer to a
  /// microphone request is one, and goes out on the reader thread by itself; so keep blocks to that size.
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
