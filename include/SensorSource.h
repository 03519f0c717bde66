#pragma once

#include <atomic>
#include <set>

#include "Mutex.h"
#include "ProtocolEndpointBase.h"
#include "VantryExport.h"

/// The service that tells the phone about the vehicle. The host reports values, one operation for each
/// sensor, and the phone requests the sensors that it wants:
///
///     parked   not requested, as at the start: a report is kept as the last value, and nothing is sent
///     live     requested: a report is sent at once, as a SensorBatch of its own, and is not kept
///
/// A request is answered, sends the parked value if there is one, and makes the sensor live; one whose period
/// is -1 parks it again. The period means nothing else: there is no timer, no rate limit and no coalescing. A
/// sensor stays live when its channel closes, and what is reported then is lost.
///
/// Values are fixed-point integers and are passed on unchanged: a name that ends in E<n> is the physical
/// value times ten to the n. Where no unit is told, and for signs and axes, the wire names none: they are as
/// agreed between the host and the phone. A `has...` flag of false leaves its field out, and the value behind
/// it is ignored. Arrays are read during the call.
///
/// Threads: registerSensor before the service is registered; the reports on any thread, any number at once.
/// Each returns STATUS_SUCCESS, which says nothing of delivery. An invalid enumeration value ends the
/// process. A request is answered, and its parked value sent, on the reader thread, whatever the host sends
/// at that moment; so no message of this service may be longer than 16128 bytes (see ProtocolEndpointBase).
class VANTRY_EXPORT SensorSource : public ProtocolEndpointBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter().
  SensorSource(int id, MessageRouter* messageRouter);
  ~SensorSource() override;

  /// Before the service is registered: this head unit has the sensor `type`, a SensorType (anything else ends
  /// the process at discovery). The phone can request no others; their reports stay parked.
  void registerSensor(int type);

  // Two sensors are replaced by each parked report: what the latest one leaves out is absent.

  /// A position fix. `timestamp` is in the host's own units. `accuracyE3` travels as an unsigned number.
  int reportLocationData(unsigned long long timestamp, int latitudeE7, int longitudeE7, bool hasAccuracy,
                         int accuracyE3, bool hasAltitude, int altitudeE2, bool hasSpeed, int speedE3,
                         bool hasBearing, int bearingE6);

  /// What is left in the tank, how far that reaches, and whether the car warns of it.
  int reportFuelData(bool hasFuelLevel, int fuelLevel, bool hasRange, int range, bool hasLowFuelWarning,
                     bool lowFuelWarning);

  // All others are merged: a parked report changes what it carries, and what it leaves out keeps its former
  // value. An array that is null, or whose count is below 1, leaves the former list as it is.

  /// The vehicle's heading and, where known, its pitch and roll.
  int reportCompassData3D(int bearingE6, bool hasPitch, int pitchE6, bool hasRoll, int rollE6);

  /// reportCompassData3D with neither pitch nor roll.
  int reportCompassData(int bearingE6);

  /// The vehicle's speed.
  int reportSpeedData(int speedE3);

  /// The engine's speed, in revolutions per minute.
  int reportRpmData(int rpmE3);

  /// The distance travelled, in kilometres.
  int reportOdometerData(int kmsE1);

  /// Whether the parking brake is applied.
  int reportParkingBrakeData(bool parkingBrake);

  /// The gear now selected, a Gear.
  int reportGearData(int gear);

  /// Trouble codes as an opaque block of `length` bytes at `codes`, which may be null if `length` is 0.
  int reportDiagnosticsData(unsigned char* codes, unsigned int length);

  /// Whether displays are to be dark, as at night.
  int reportNightModeData(bool nightMode);

  /// Temperature and air pressure outside.
  int reportEnvironmentData(bool hasTemperature, int temperatureE3, bool hasPressure, int pressureE3);

  /// The cabin's temperature, wanted and actual. Live, this sends two messages, of which the first is an
  /// empty SensorBatch.
  int reportHvacData(bool hasTargetTemperature, int targetTemperatureE3, bool hasCurrentTemperature,
                     int currentTemperatureE3);

  /// The restrictions in force while driving. `status`: DrivingStatus values combined, not checked.
  int reportDrivingStatusData(int status);

  /// The angle of the steering, and `wheelCount` speeds at `wheelSpeedsE3`, one a wheel in the host's order.
  int reportDeadReckoningData(bool hasSteeringAngle, int steeringAngleE1, const int* wheelSpeedsE3,
                              int wheelCount);

  /// Whether somebody sits in the passenger's seat.
  int reportPassengerData(bool passengerPresent);

  /// What stands open: hood, trunk, and the `doorCount` doors at `doorsOpen`, in the host's order.
  int reportDoorData(bool hasHood, bool hoodOpen, bool hasTrunk, bool trunkOpen, const bool* doorsOpen,
                     int doorCount);

  /// The lights outside. `headLightState`: a HeadLightState. `turnIndicatorState`: a TurnIndicatorState.
  int reportLightData(bool hasHeadLightState, int headLightState, bool hasTurnIndicatorState,
                      int turnIndicatorState, bool hasHazardLights, bool hazardLightsOn);

  /// `tireCount` pressures at `pressuresE2`, one a tyre in the host's order.
  int reportTirePressureData(const int* pressuresE2, int tireCount);

  /// The vehicle's acceleration along three axes.
  int reportAccelerometerData(bool hasX, int accelerationXE3, bool hasY, int accelerationYE3, bool hasZ,
                              int accelerationZE3);

  /// The vehicle's rotation about three axes.
  int reportGyroscopeData(bool hasX, int rotationSpeedXE3, bool hasY, int rotationSpeedYE3, bool hasZ,
                          int rotationSpeedZE3);

  /// The satellites: how many are in use, how many in view, and of each its number, its signal to noise
  /// ratio, whether it is in use, and where it stands. With `hasNumberInView`, each array that is not null
  /// has `numberInView` elements, one a satellite. Satellites are sent only if the first three arrays are
  /// given; azimuth and elevation only if both are.
  ///
  /// Parked reports append their satellites to those of earlier ones, without limit, until the phone requests
  /// the sensor. Some 850 of them fill a message of 16128 bytes, and a longer one breaks the link where any
  /// other report is sent beside it: report satellites only while the phone wants them, or a bounded number
  /// of times before.
  int reportGpsSatelliteData(int numberInUse, bool hasNumberInView, int numberInView, const int* prns,
                             const int* snrsE3, const bool* usedInFix, const int* azimuthsE3,
                             const int* elevationsE3);

  /// Does nothing: no sensor has a timer. For hosts that drive all their sources by one clock; `now`, in
  /// whatever unit, is not read.
  void tick(unsigned long long now);

  /// Any thread: sends `batch` as it is, whatever the phone requested; it must not change during the call.
  /// Dropped while no channel is open.
  void sendSensorBatch(const SensorBatch& batch);

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;

 protected:
  /// Any thread: answers a request. A `status` that is no MessageStatus ends the process.
  void sendSensorResponse(int status);

 private:
  int handleSensorRequest(const SensorRequest& request);
  bool isLive(int type) const;
  bool takeParkedValue(int type, SensorBatch* batch);
  static void populateFuelData(FuelData* data, bool hasFuelLevel, int fuelLevel, bool hasRange, int range,
                               bool hasLowFuelWarning, bool lowFuelWarning);

  template <int type, class Fill>
  int report(const Fill& fill);
  template <int type, class Fill>
  int reportWhole(const Fill& fill);
  template <int type, class Fill>
  int sendValue(const Fill& fill);
  template <int type, class Fill>
  int parkValue(const Fill& fill);

  std::set<int> sensors;
  std::atomic<long long> minUpdatePeriods[SensorType_MAX];  // by type, less 1; -1: not requested
  SensorBatch lastValues;  // at most one record for each sensor: its parked value
  Mutex lock;              // guards lastValues, never across a send
};
