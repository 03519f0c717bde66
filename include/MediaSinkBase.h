#pragma once

#include <vector>

#include "ProtocolEndpointBase.h"
#include "Snapshot.h"
#include "VantryExport.h"

/// What audio and video playback have in common: the phone sends Setup, Start, data and Stop; the head unit
/// answers Config and acknowledges data at its own pace. VideoSink and AudioSink derive from it; hosts use
/// those.
///
///     media data message   0     2           10
///                          type  timestamp   media bytes
///                          00 00 64 bits BE
///
/// Flow control lies between the host and the phone: the library advertises `maxUnacked`, forwards
/// acknowledgements, counts nothing and holds nothing back. No order among the messages is enforced. Every
/// callback runs on the reader thread, and no media byte is copied on its way to it.
class VANTRY_EXPORT MediaSinkBase : public ProtocolEndpointBase {
 public:
  MediaSinkBase(int id, MessageRouter* messageRouter);
  ~MediaSinkBase() override;

  /// Before discovery: the codec to advertise, a MediaCodecType (initially MEDIA_CODEC_VIDEO for a VideoSink
  /// and MEDIA_CODEC_1 for an AudioSink). A number outside that enumeration ends the process at discovery.
  void setCodecType(int type) { codecType = type; }

  /// Before the phone's Setup: how many media messages the phone may have unacknowledged at once (initially
  /// 1). Not checked; it travels as an unsigned number, so that a negative one arrives as a large one.
  void setMaxUnacked(int count) { maxUnacked = count; }

  /// Any thread: acknowledges `count` media messages of `session`, the session id that came with the data.
  /// The result tells failures only: false if the Ack was queued, and also if no channel is open; true if
  /// queueing failed.
  bool ackFrames(int session, unsigned int count);

  /// Any thread: narrows what the next Config advertises to the `count` configuration indices at `indices`,
  /// in that order and with repetitions, copied before the call returns; 0 advertises all again. Sends
  /// nothing. Returns false, and changes nothing, if an index is out of range or there are more indices than
  /// configurations.
  bool resetAllowedConfigurations(unsigned int* indices, unsigned int count);

  /// Any thread: advertises the configurations with `status`, a Config_Status; anything else ends the
  /// process. Sent by itself, as STATUS_READY, in answer to Setup.
  void sendConfig(int status);

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;

  // What the derived classes make of each message. Reader thread.

  /// The phone sent Setup. Not 0 refuses it, without an answer to the phone.
  virtual int handleSetup(int mediaCodecType) = 0;
  /// `length` bytes of codec configuration at `data`, valid during the call.
  virtual void handleCodecConfig(void* data, unsigned int length) = 0;
  /// One media message, whose media bytes begin `offset` bytes into `buffer`'s content.
  virtual void handleDataAvailable(unsigned long long timestamp, shared_ptr<IoBuffer> const& buffer,
                                   unsigned int offset) = 0;
  /// The phone sent Start, and its configuration was not refused.
  virtual void playbackStart(int session) = 0;
  /// The phone sent Stop; `session` is that of the latest Start, 0 before the first.
  virtual void playbackStop(int session) = 0;
  /// The phone chose a configuration, unchecked. Not 0 refuses the Start.
  virtual int handleMediaConfiguration(int configurationIndex) = 0;
  /// True if handled.
  virtual bool handleVideoFocusRequest(VideoFocusRequestNotification const& request) = 0;
  /// How many configurations are on offer. Any thread.
  virtual unsigned int getNumberOfConfigurations() = 0;

 protected:
  int codecType = MEDIA_CODEC_1;
  int sessionId = 0;  ///< of the most recent Start; reader thread
  int maxUnacked = 1;
  Snapshot<std::vector<unsigned int>> allowedConfigurations;  ///< empty: all are advertised

 private:
  int handleMediaData(const shared_ptr<IoBuffer>& message);
  int handleCodecConfigMessage(const shared_ptr<IoBuffer>& message);
  int handleSetupMessage(Setup const& setup);
  int handleStart(Start const& start);
  int handleStop(Stop const& stop);
  int handleVideoFocusMessage(VideoFocusRequestNotification const& request);
};
