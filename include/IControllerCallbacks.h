#pragma once

#include <string>

#include "VantryExport.h"
#include "protos.pb.h"

/// What the host hears of the link itself. The host implements it, and gives it to VantryReceiver::init.
///
/// All operations run on the reader thread, inside VantryReceiver::queueIncoming, except that
/// unrecoverableError can also come from the writer thread. They may call back into Controller, which is how
/// the host answers, and into anything else that sends, and MessageRouter::closeChannel and
/// Transport::requestStop; they must not call Transport::waitForExit or VantryReceiver::shutdown, nor destroy
/// anything of the link. The link stands still while they run. Strings are valid during the call only.
class VANTRY_EXPORT IControllerCallbacks {
 public:
  virtual ~IControllerCallbacks() = default;

  /// The phone asks what the car offers, and tells its icons (encoded images, possibly empty) and display
  /// name. The answer goes out by itself afterwards.
  virtual void serviceDiscoveryRequest(const std::string& smallIcon, const std::string& mediumIcon,
                                       const std::string& largeIcon, const std::string& labelText) = 0;

  /// The link is beyond repair: a framing error, an encryption failure or a failed authentication. The
  /// library does not stop its threads: the host is to stop the link, and soon, since after a framing error
  /// the writer thread does not rest until then. May come more than once.
  virtual void unrecoverableError() = 0;

  /// The phone pings; the library answers by itself right after this call. `timestamp` is the phone's own
  /// number. `bugReport`: the phone asks this head unit for a bug report, which is the host's to make; false
  /// if it did not say.
  virtual void pingRequest(long long timestamp, bool bugReport) = 0;

  /// The phone answers a ping with the `timestamp` that the host gave to Controller::sendPingRequest.
  virtual void pingResponse(long long timestamp) = 0;

  /// The phone wants navigation focus; answer with Controller::setNavigationFocus.
  virtual void navigationFocusRequest(NavFocusType focusType) = 0;

  /// The phone ends the session; answer with Controller::sendByeByeResponse, then stop the link.
  virtual void byeByeRequest(ByeByeReason reason) = 0;

  /// The phone answers Controller::sendByeByeRequest. Nothing stops by itself.
  virtual void byeByeResponse() = 0;

  /// A voice session starts or ends on the phone.
  virtual void voiceSessionNotification(VoiceSessionStatus status) = 0;

  /// The phone wants audio focus, or gives it back; answer with Controller::setAudioFocus. The number comes
  /// from the phone unchecked: it may lie outside the enumeration.
  virtual void audioFocusRequest(AudioFocusRequestType request) = 0;

  /// The handshake has ended with `status`, STATUS_SUCCESS or STATUS_AUTHENTICATION_FAILURE; the phone is
  /// told next. What is sent from inside this call leaves before the phone is told, and on success already
  /// enciphered.
  virtual void authenticationCompleted(int status) = 0;

  /// The phone has accepted this head unit's protocol version and speaks `major`.`minor` itself.
  virtual void versionResponse(unsigned long long major, unsigned long long minor) = 0;
};
