#pragma once

#include "VantryExport.h"
#include "protos.pb.h"

/// The host's verification harness: what a test application on the phone wants done. Acting on it is the
/// harness's work, through the host's own handles on the other services, and so is answering it, through
/// VendorExtension::sendData.
///
/// All operations run on the reader thread; the record is valid during the call, complete, and without
/// unknown fields at any depth. The result is a MessageStatus: STATUS_UNEXPECTED_MESSAGE makes the phone hear
/// that its message was not understood, and any other number changes nothing. A callback may send, call
/// MessageRouter::closeChannel and Transport::requestStop; it must not call Transport::waitForExit or
/// VantryReceiver::shutdown, nor destroy the endpoint.
class VANTRY_EXPORT IVantryVerificationCallbacks {
 public:
  virtual ~IVantryVerificationCallbacks() = default;

  /// Report these sensor values, if there are any, as if the vehicle had.
  virtual int onSetSensor(VantryVerificationSetSensor const& message) = 0;

  /// Force the video focus.
  virtual int onVideoFocus(VantryVerificationVideoFocus const& message) = 0;

  /// Report this input as if it had been made.
  virtual int onInjectInput(VantryVerificationInjectInput const& message) = 0;

  /// Answer with a VantryVerificationScreenCaptureResponse.
  virtual int onScreenCaptureRequest(VantryVerificationScreenCaptureRequest const& message) = 0;

  /// Answer with a VantryVerificationDisplayInformationResponse.
  virtual int onDisplayInformationRequest(VantryVerificationDisplayInformationRequest const& message) = 0;

  /// Force the audio focus.
  virtual int onAudioFocus(VantryVerificationAudioFocus const& message) = 0;
};
