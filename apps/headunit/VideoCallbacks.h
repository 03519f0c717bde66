#pragma once

#include <IVideoSinkCallbacks.h>
#include <VideoSink.h>

#include "headunit/TcpTransport.h"
#include "headunit/VideoPipeline.h"

namespace headunit {

/// Hands the phone's video over to the decoder, as it is.
class VideoCallbacks : public IVideoSinkCallbacks {
 public:
  /// Both outlive this object; the transport tells when bytes came.
  VideoCallbacks(VideoPipeline* pipeline, const TcpTransport* transport)
      : pipeline_(pipeline), transport_(transport) {}

  /// Before the link starts: where focus requests are answered.
  void answerThrough(VideoSink* sink) { sink_ = sink; }

  void dataAvailable(int sessionId, unsigned long long timestamp, ::shared_ptr<IoBuffer> const& buffer,
                     void* data, unsigned int length) override;
  void codecConfig(void* data, unsigned int length) override;
  int setup(int mediaCodecType) override;
  void playbackStart(int sessionId) override;
  void playbackStop(int sessionId) override;
  void mediaConfiguration(int configurationIndex) override;
  void videoFocusRequest(int mode, int reason) override;

 private:
  VideoPipeline* const pipeline_;
  const TcpTransport* const transport_;
  VideoSink* sink_ = nullptr;
};

}  // namespace headunit
