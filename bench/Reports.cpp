#include "Reports.h"

#include "BigEndian.h"

namespace {

constexpr int WHEELS[] = {13900, 13900, 13850, 13850};
constexpr int PRESSURES[] = {230, 230, 240, 240};
constexpr bool DOORS[] = {false, false, true, false};
constexpr int PRNS[] = {2, 5, 7, 13, 15, 24, 29, 30};
constexpr int SIGNALS[] = {41000, 38000, 35000, 30000, 28000, 27000, 21000, 18000};
constexpr bool IN_FIX[] = {true, true, true, true, true, false, false, false};
constexpr int ANGLES[] = {10000, 55000, 90000, 120000, 170000, 200000, 260000, 310000};
constexpr unsigned int FINGERS[] = {0, 1};
constexpr unsigned int ACROSS[] = {412, 633};
constexpr unsigned int DOWN[] = {204, 377};

unsigned char troubleCodes[] = {0x01, 0x71, 0x03, 0x00};

Bytes messageOf(unsigned short type, const google::protobuf::MessageLite& record) {
  IoBuffer message;
  MessageRouter::marshallProto(type, record, &message);
  return Bytes(message.content(), message.content() + message.size());
}

const std::vector<Report> EVERY_REPORT = {
    {"location",
     [](ReportingLink& car) {
       car.sensors.reportLocationData(1700000000000, 481372000, 115756000, true, 4000, true, 51900, true,
                                      13900, true, 270000000);
     }},
    {"compass", [](ReportingLink& car) { car.sensors.reportCompassData3D(270000000, true, 1, true, -1); }},
    {"speed", [](ReportingLink& car) { car.sensors.reportSpeedData(13900); }},
    {"rpm", [](ReportingLink& car) { car.sensors.reportRpmData(2200000); }},
    {"odometer", [](ReportingLink& car) { car.sensors.reportOdometerData(1234567); }},
    {"fuel", [](ReportingLink& car) { car.sensors.reportFuelData(true, 63, true, 480, true, false); }},
    {"parking brake", [](ReportingLink& car) { car.sensors.reportParkingBrakeData(true); }},
    {"gear", [](ReportingLink& car) { car.sensors.reportGearData(GEAR_1); }},
    {"diagnostics",
     [](ReportingLink& car) { car.sensors.reportDiagnosticsData(troubleCodes, sizeof troubleCodes); }},
    {"night mode", [](ReportingLink& car) { car.sensors.reportNightModeData(true); }},
    {"environment", [](ReportingLink& car) { car.sensors.reportEnvironmentData(true, 21500, true, 101325); }},
    {"hvac", [](ReportingLink& car) { car.sensors.reportHvacData(true, 21000, true, 22500); },
     Report::Record::sensorBatch, 2},
    {"driving status", [](ReportingLink& car) { car.sensors.reportDrivingStatusData(1); }},
    {"dead reckoning", [](ReportingLink& car) { car.sensors.reportDeadReckoningData(true, -15, WHEELS, 4); }},
    {"passenger", [](ReportingLink& car) { car.sensors.reportPassengerData(true); }},
    {"door", [](ReportingLink& car) { car.sensors.reportDoorData(true, false, true, false, DOORS, 4); }},
    {"light",
     [](ReportingLink& car) {
       car.sensors.reportLightData(true, HeadLightState_MIN, true, TurnIndicatorState_MIN, true, true);
     }},
    {"tire pressure", [](ReportingLink& car) { car.sensors.reportTirePressureData(PRESSURES, 4); }},
    {"accelerometer",
     [](ReportingLink& car) { car.sensors.reportAccelerometerData(true, 100, true, -200, true, 9810); }},
    {"gyroscope", [](ReportingLink& car) { car.sensors.reportGyroscopeData(true, 10, true, -20, true, 30); }},
    {"GPS, 8 satellites",
     [](ReportingLink& car) {
       car.sensors.reportGpsSatelliteData(5, true, 8, PRNS, SIGNALS, IN_FIX, ANGLES, ANGLES);
     }},
    {"touch, 2 fingers",
     [](ReportingLink& car) {
       car.input.reportTouch(1700000000000, 2, FINGERS, ACROSS, DOWN, POINTER_ACTION_2, 0);
     },
     Report::Record::inputReport},
};

}  // namespace

ReportingLink::ReportingLink() {
  for (int type = SensorType_MIN; type <= SensorType_MAX; ++type) sensors.registerSensor(type);
  link.offer(&sensors, 1);
  link.offer(&input, 2);
  for (int type = SensorType_MIN; type <= SensorType_MAX; ++type) {
    SensorRequest request;
    request.set_type(static_cast<SensorType>(type));
    request.set_min_update_period(0);
    link.deliver(1, messageOf(MESSAGE_SENSOR_REQUEST, request));
    link.takeFrame();  // the response
  }
}

Bytes ReportingLink::takeBody() {
  constexpr int HEADER_AND_TYPE = 6;
  const Bytes frame = link.takeFrame();
  return Bytes(frame.begin() + HEADER_AND_TYPE, frame.end());
}

const std::vector<Report>& reports() { return EVERY_REPORT; }
