#pragma once

#include <vector>

#include "IAudioSinkCallbacks.h"
#include "MediaSinkBase.h"
#include "VantryExport.h"

/// The service that receives one audio stream from the phone and hands it to the host, which plays it. A head
/// unit has one AudioSink for each stream type that it plays.
class VANTRY_EXPORT AudioSink : public MediaSinkBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter(). Keeps a reference to
  /// `sinkCallbacks`, which must point to an object, until destruction.
  AudioSink(int id, MessageRouter* messageRouter, const shared_ptr<IAudioSinkCallbacks>& sinkCallbacks);
  ~AudioSink() override;

  /// Before the link starts: which stream this sink plays (initially AUDIO_STREAM_MEDIA). A number outside
  /// the enumeration ends the process at discovery.
  void setStreamType(AudioStreamType type) { streamType = type; }

  /// Before discovery: offers a format and returns its index, from 0. `samplingRate` is in samples per second
  /// and `numberOfBits` is that of one sample; all three numbers are passed on unchecked.
  int addSupportedConfiguration(unsigned int samplingRate, unsigned int numberOfBits,
                                unsigned int numberOfChannels);

  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;
  int handleSetup(int mediaCodecType) override;
  void handleCodecConfig(void* data, unsigned int length) override;
  void handleDataAvailable(unsigned long long timestamp, shared_ptr<IoBuffer> const& buffer,
                           unsigned int offset) override;
  void playbackStart(int session) override;
  void playbackStop(int session) override;
  /// Accepts any: the index goes no further, since the formats that Config advertised are all the host's own.
  int handleMediaConfiguration(int configurationIndex) override;
  /// False: an audio stream has no video focus.
  bool handleVideoFocusRequest(VideoFocusRequestNotification const& request) override;
  unsigned int getNumberOfConfigurations() override;

 private:
  shared_ptr<IAudioSinkCallbacks> callbacks;
  std::vector<shared_ptr<AudioConfiguration>> audioConfigurations;
  AudioStreamType streamType = AUDIO_STREAM_MEDIA;
};
