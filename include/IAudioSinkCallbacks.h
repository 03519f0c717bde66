#pragma once

#include "IoBuffer.h"
#include "VantryExport.h"
#include "shared_ptr.h"

/// What the host hears of an audio stream. All operations run on the reader thread: play elsewhere. A
/// callback may send, call MessageRouter::closeChannel and Transport::requestStop; it must not call
/// Transport::waitForExit or VantryReceiver::shutdown, nor destroy the endpoint.
class VANTRY_EXPORT IAudioSinkCallbacks {
 public:
  virtual ~IAudioSinkCallbacks() = default;

  /// One media message: `length` audio bytes at `data`, which lie inside `buffer` and stay valid for as long
  /// as the host holds a copy of `buffer`. `timestamp` is the phone's. Acknowledge with
  /// AudioSink::ackFrames(sessionId, 1).
  virtual void dataAvailable(int sessionId, unsigned long long timestamp, shared_ptr<IoBuffer> const& buffer,
                             void* data, unsigned int length) = 0;

  /// `length` bytes of codec configuration at `data`, valid during the call.
  virtual void codecConfig(void* data, unsigned int length) = 0;

  /// The phone prepares a stream of `mediaCodecType`, a MediaCodecType that nothing has compared with what
  /// was advertised. 0 accepts, and the answer goes out by itself; anything else refuses, and the phone hears
  /// nothing.
  virtual int setup(int mediaCodecType) = 0;

  /// The stream starts; `sessionId` comes with its data and goes into its acknowledgements.
  virtual void playbackStart(int sessionId) = 0;

  /// The stream stops. Not called when the phone closes the channel or goes away.
  virtual void playbackStop(int sessionId) = 0;
};
