#pragma once

#include <AudioSink.h>

#include <memory>
#include <string>

#include "headunit/AudioStream.h"
#include "headunit/Mixer.h"

namespace headunit {

/// One kind of sound that the phone may play: its endpoint, and its stream in the mix.
class SoundService {
 public:
  SoundService(int serviceId, AudioStreamType type, AudioFormat format, const std::string& name,
               MessageRouter* router, Mixer* mixer);
  ~SoundService() { detach(); }
  SoundService(const SoundService&) = delete;
  SoundService& operator=(const SoundService&) = delete;

  ProtocolEndpointBase* endpoint() { return sink_.get(); }
  const std::string& name() const { return stream_->name(); }
  AudioTotals totals() const { return stream_->totals(); }

  /// The link is over; what has come is still played.
  void detach() { stream_->detach(); }

 private:
  std::shared_ptr<AudioStream> stream_;
  std::unique_ptr<AudioSink> sink_;
};

}  // namespace headunit
