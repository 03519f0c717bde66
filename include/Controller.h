#pragma once

#include <ctime>
#include <string>

#include "IControllerCallbacks.h"
#include "ProtocolEndpointBase.h"
#include "SslWrapper.h"
#include "VantryExport.h"
#include "shared_ptr.h"

/// The service that is always there: service 0 on channel 0. It brings the link up (version, TLS, discovery),
/// answers pings, and carries focus, bye-bye and voice session messages. VantryReceiver owns the one of a
/// link.
///
/// Threads: the setters before the link starts; the send operations on any thread. A send reports nothing and
/// is dropped while channel 0 is not open.
///
/// Long messages: what ProtocolEndpointBase tells of them holds on channel 0, too. With many services and
/// configurations the discovery response can come to more than 16128 bytes. It is queued on the reader thread
/// once IControllerCallbacks::serviceDiscoveryRequest has returned, and a ping that another thread sends at
/// that moment breaks the stream. A host of which it may be that long sends nothing on channel 0 from other
/// threads between that call and the phone's next message.
class VANTRY_EXPORT Controller : public ProtocolEndpointBase {
 public:
  explicit Controller(MessageRouter* messageRouter);

  /// Queues the version request, which begins the link. STATUS_SUCCESS.
  int start();

  /// Once, before `start`: this head unit's credentials as PEM text, see SslWrapper::init. On false the link
  /// must not be started; VantryReceiver::shutdown is due all the same, and frees what was allocated.
  [[nodiscard]] bool setClientCreds(const std::string& rootCertificate, const std::string& clientCertificate,
                                    const std::string& privateKey);

  /// Before `start`: the phone's certificate is judged as of `time`, for a head unit without a trusted clock.
  void setCertificateVerificationTime(time_t time) { wrapper.setCertificateVerificationTime(time); }

  // What discovery tells the phone of the car, each empty until set. Before `start`; the text is copied.
  void setMake(const std::string& text) { make = text; }
  void setModel(const std::string& text) { model = text; }
  void setYear(const std::string& text) { year = text; }
  void setVehicleId(const std::string& text) { vehicleId = text; }
  void setHeadUnitMake(const std::string& text) { headUnitMake = text; }
  void setHeadUnitModel(const std::string& text) { headUnitModel = text; }
  void setHeadUnitSoftwareBuild(const std::string& text) { headUnitSoftwareBuild = text; }
  void setHeadUnitSoftwareVersion(const std::string& text) { headUnitSoftwareVersion = text; }
  /// A number outside the enumeration ends the process when the phone asks for discovery.
  void setDriverPosition(DriverPosition position) { driverPosition = position; }

  /// Pings the phone. `timestamp` is the host's own number, in its own units, and comes back in
  /// IControllerCallbacks::pingResponse. The library has no timer and keeps no record of pings.
  /// `bugReport` asks the phone for a bug report; the library does no more than to send it.
  void sendPingRequest(long long timestamp, bool bugReport);

  /// States the audio focus; `unsolicited` where it answers no request. An invalid `state` ends the process.
  void setAudioFocus(AudioFocusStateType state, bool unsolicited);

  /// States the navigation focus. An invalid `type` ends the process.
  void setNavigationFocus(NavFocusType type);

  /// Tells the phone that the session ends; IControllerCallbacks::byeByeResponse follows. Nothing stops by
  /// itself. An invalid `reason` ends the process.
  void sendByeByeRequest(ByeByeReason reason);

  /// Answers IControllerCallbacks::byeByeRequest.
  void sendByeByeResponse();

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;

  /// Adds nothing: service 0 is never advertised.
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;

  // For VantryReceiver and MessageRouter.

  /// Before the link starts: takes a reference to `newCallbacks` and drops any former one.
  void setCallbacks(const shared_ptr<IControllerCallbacks>& newCallbacks) { callbacks = newCallbacks; }
  /// Passes on to the host; does nothing without callbacks.
  void unrecoverableError();
  /// The link's TLS state.
  SslWrapper& sslWrapper() { return wrapper; }

 private:
  void sendVersionRequest();
  int handleVersionResponse(void* data, unsigned int length);
  int startAuthentication();
  int handleHandshake(void* data, unsigned int length);
  void completeAuthentication();
  void failAuthentication();
  void sendAuthResponse(int status);
  int handleServiceDiscoveryRequest(const ServiceDiscoveryRequest& request);
  void sendServiceDiscoveryResponse();
  int handlePingRequest(const PingRequest& request);
  int handlePingResponse(const PingResponse& response);
  int handleNavFocusRequest(const NavFocusRequestNotification& notification);
  int handleByeByeRequest(const ByeByeRequest& request);
  int handleByeByeResponse(const ByeByeResponse& response);
  int handleVoiceSession(const VoiceSessionNotification& notification);
  int handleAudioFocusRequest(const shared_ptr<IoBuffer>& message);
  void sendPlain(void* data, unsigned int length);

  bool versionAccepted = false;
  std::string make;
  std::string model;
  std::string year;
  std::string vehicleId;
  std::string headUnitMake;
  std::string headUnitModel;
  std::string headUnitSoftwareBuild;
  std::string headUnitSoftwareVersion;
  DriverPosition driverPosition = DRIVER_POSITION_0;
  shared_ptr<IControllerCallbacks> callbacks;
  SslWrapper wrapper;
};
