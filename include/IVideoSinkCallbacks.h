#pragma once

#include "IoBuffer.h"
#include "VantryExport.h"
#include "shared_ptr.h"

/// What the host hears of a video stream. All operations run on the reader thread: decode elsewhere. A
/// callback may send, call MessageRouter::closeChannel and Transport::requestStop; it must not call
/// Transport::waitForExit or VantryReceiver::shutdown, nor destroy the endpoint.
class VANTRY_EXPORT IVideoSinkCallbacks {
 public:
  virtual ~IVideoSinkCallbacks() = default;

  /// One media message: `length` encoded bytes at `data`, which lie inside `buffer` and stay valid for as
  /// long as the host holds a copy of `buffer`. `timestamp` is the phone's. Acknowledge with
  /// VideoSink::ackFrames(sessionId, 1).
  virtual void dataAvailable(int sessionId, unsigned long long timestamp, shared_ptr<IoBuffer> const& buffer,
                             void* data, unsigned int length) = 0;

  /// `length` bytes of codec configuration at `data`, valid during the call.
  virtual void codecConfig(void* data, unsigned int length) = 0;

  /// The phone prepares a stream of `mediaCodecType`, always MEDIA_CODEC_VIDEO. The answer goes out by
  /// itself; the result is ignored.
  virtual int setup(int mediaCodecType) = 0;

  /// The stream starts; `sessionId` comes with its data and goes into its acknowledgements.
  virtual void playbackStart(int sessionId) = 0;

  /// The stream stops. Not called when the phone closes the channel or goes away.
  virtual void playbackStop(int sessionId) = 0;

  /// The phone chose the configuration at `configurationIndex`, just before playbackStart. The number comes
  /// from the phone unchecked.
  virtual void mediaConfiguration(int configurationIndex) = 0;

  /// The phone asks for video focus: a VideoFocusMode and a VideoFocusReason (0 if it gave none). Answer with
  /// VideoSink::setVideoFocus, now or later.
  virtual void videoFocusRequest(int mode, int reason) = 0;
};
