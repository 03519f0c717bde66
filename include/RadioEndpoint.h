#pragma once

#include "IRadioCallbacks.h"
#include "ProtocolEndpointBase.h"
#include "VantryExport.h"

/// The service through which the phone controls the car's tuner: seek, tune, switch off, and read what the
/// station sends. The tuner is the host's, and so is all its state: frequency, scan, power.
class VANTRY_EXPORT RadioEndpoint : public ProtocolEndpointBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter(). Keeps a reference to `radioCallbacks`,
  /// which must point to an object, until destruction.
  RadioEndpoint(int id, MessageRouter* messageRouter, const shared_ptr<IRadioCallbacks>& radioCallbacks);
  ~RadioEndpoint() override;

  /// Before discovery: the kind of tuner (initially RADIO_TYPE_1). A number outside the enumeration ends the
  /// process at discovery.
  void setRadioType(RadioType type) { radioType = type; }
  /// Before discovery: the lower end of the band, in hertz (initially 0).
  void setStartFrequencyHz(int frequency) { startFrequencyHz = frequency; }
  /// Before discovery: the upper end of the band, in hertz (initially 0).
  void setEndFrequencyHz(int frequency) { endFrequencyHz = frequency; }
  /// Before discovery: the distance between two channels of the band, in hertz (initially 0).
  void setChannelSpacingHz(int spacing) { channelSpacingHz = spacing; }

  /// Any thread, also unasked: tells the phone of the station, leaving out what `data` does not hold. Always
  /// 0, also if no channel is open, which drops the message.
  int sendRdsData(RdsData const& data);

  /// Any thread: a scan has ended at `frequencyHz`. `status` goes to the phone as it is; `data` may be null,
  /// and is read during the call. Always 0, also if no channel is open, which drops the message.
  int notifyScanComplete(int status, int frequencyHz, RdsData const* data);

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;

 private:
  int handleScanRequest(RadioScanRequest const& request);
  int handleRadioStationInfoRequest();
  int handleSetStationRequest(RadioSetStationRequest const& request);
  void populateRdsData(RdsData const& data, RadioStationInfoNotification* notification);

  RadioType radioType = RADIO_TYPE_1;
  int startFrequencyHz = 0;
  int endFrequencyHz = 0;
  int channelSpacingHz = 0;
  shared_ptr<IRadioCallbacks> callbacks;
};
