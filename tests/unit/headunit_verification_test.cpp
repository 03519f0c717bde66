#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <new>
#include <optional>
#include <thread>

#include "FailingCalls.h"
#include "ServiceTest.h"
#include "headunit/services/VerificationService.h"

namespace headunit {
namespace {

using test::bytes;
using test::Bytes;
using test::message;
using testing::ElementsAre;
using testing::IsEmpty;

struct FakeCamera : ScreenCamera {
  Size size() const override { return {1088, 480}; }
  std::string png() const override {
    takenOn = std::this_thread::get_id();
    ++taken;
    if (whileTaking) whileTaking();
    return picture;
  }
  std::string picture = "the screen";
  mutable std::thread::id takenOn;
  mutable int taken = 0;
  std::function<void()> whileTaking;
};

/// A test application on the phone, at a head unit whose harness has a car to play with.
struct HeadunitVerification : testing::Test {
  enum : int { VIDEO = 1, SENSORS, INPUT, EXTENSION };  // services, and the channels that they are open on

  test::LogCapture log;
  test::PlainLink link;
  VideoSink video{VIDEO, link.router(),
                  ::shared_ptr<IVideoSinkCallbacks>(new testing::NiceMock<test::MockVideoSinkCallbacks>)};
  SensorSource sensors{SENSORS, link.router()};
  InputSource input{INPUT, link.router()};
  FakeCamera camera;
  SlowWork slowWork{1};
  VerificationService extension{
      EXTENSION, link.router(), {&sensors, &input, &video, &link.controller(), &slowWork, &camera}};

  HeadunitVerification() {
    for (int type = 1; type <= 21; ++type) sensors.registerSensor(type);
    input.setSupportedKeycodes({4, 19});
    video.addSupportedConfiguration(VIDEO_800x480, 30, 0, 0, 160);
    const std::vector<ProtocolEndpointBase*> all = {&video, &sensors, &input, &extension};
    for (int i = 0; i < 4; ++i) {
      link.registers(all[static_cast<std::size_t>(i)]);
      link.opens(i + 1, i + 1);
    }
    KeyBindingRequest binding;
    binding.add_keycodes(4);
    binding.add_keycodes(19);
    link.sends(INPUT, MESSAGE_KEY_BINDING_REQUEST, binding);
    link.sent(INPUT);
  }

  void makeLive(SensorType type) {
    SensorRequest request;
    request.set_type(type);
    request.set_min_update_period(0);
    link.sends(SENSORS, MESSAGE_SENSOR_REQUEST, request);
    link.sent(SENSORS);
  }
  void asks(int type, const google::protobuf::MessageLite& record) { link.sends(EXTENSION, type, record); }
  void sets(const SensorBatch& batch) {
    VantryVerificationSetSensor record;
    *record.mutable_sensors() = batch;
    asks(MESSAGE_VANTRY_VERIFICATION_SET_SENSOR, record);
  }
  int injects(const InputReport& report) {
    VantryVerificationInjectInput record;
    *record.mutable_input() = report;
    return harness().onInjectInput(record);
  }
  /// A harness of its own, to see what its operations return.
  VerificationHarness& harness() {
    own = std::make_unique<VerificationHarness>(
        VerificationHarness::Car{&sensors, &input, &video, &link.controller(), &slowWork, &camera});
    own->answerThrough(&extension);
    return *own;
  }
  void waitForSlowWork() {
    std::promise<void> done;
    slowWork.post([&done] { done.set_value(); });
    done.get_future().wait();
  }
  void requestCapture() {
    asks(MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_REQUEST, VantryVerificationScreenCaptureRequest());
  }

  std::unique_ptr<VerificationHarness> own;
};

// ---- Refusals ----

TEST_F(HeadunitVerification, RefusesWhatItDoesNotUnderstand) {
  for (const Bytes& what : {bytes("80 06"), bytes("80 01 0A"), bytes("80 05"), bytes("80")}) {
    link.sends(EXTENSION, what);
    EXPECT_THAT(link.sent(EXTENSION), ElementsAre(bytes("00 FF")));
  }
  EXPECT_THAT(log.critical(), IsEmpty());  // none of it by the link itself, which knows no order
}

TEST_F(HeadunitVerification, IsRefusedByTheLinkOnceItHasEnded) {
  extension.release();
  link.sends(EXTENSION, bytes("80 06"));
  EXPECT_THAT(link.sent(EXTENSION), ElementsAre(bytes("00 FF")));
  EXPECT_THAT(log.critical(), ElementsAre("[LHU] Sending unexpected message on channel 4"));
}

TEST_F(HeadunitVerification, RefusesNothingAmidThePiecesOfAPicture) {
  camera.picture.assign(std::size_t{4} << 20, 'x');
  std::promise<void> ready;
  std::promise<void> firstPieceOut;
  std::promise<void> sentWhole;
  std::optional<test::EventAtPost> amid;
  camera.whileTaking = [&] {
    ready.get_future().wait();
    amid.emplace([&] { firstPieceOut.set_value(); });
  };
  requestCapture();
  slowWork.post([&] { sentWhole.set_value(); });
  ready.set_value();
  firstPieceOut.get_future().wait();
  std::size_t refused = 0;
  const std::future<void> end = sentWhole.get_future();
  do {
    link.sends(EXTENSION, bytes("80 06"));
    ++refused;
  } while (end.wait_for(std::chrono::seconds(0)) != std::future_status::ready);

  std::vector<Bytes> sent = link.sent(EXTENSION);
  EXPECT_EQ(std::count(sent.begin(), sent.end(), bytes("00 FF")), refused);
  sent.erase(std::remove(sent.begin(), sent.end(), bytes("00 FF")), sent.end());
  VantryVerificationScreenCaptureResponse answer;
  answer.set_screen_capture(camera.picture);
  EXPECT_THAT(sent, ElementsAre(message(MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_RESPONSE, answer)));
}

// ---- Sensors ----

TEST_F(HeadunitVerification, SetsNoMoreSatellitesThanFitInOneMessage) {
  SensorBatch batch;
  GpsSatelliteData* const data = batch.add_gps_satellite_data();
  data->set_number_in_use(0);
  for (int i = 0; i < 400; ++i) {
    GpsSatellite* const one = data->add_satellites();
    one->set_prn(1);
    one->set_snr_e3(1);
    one->set_used_in_fix(false);
  }
  for (int i = 0; i < 2; ++i) sets(batch);
  EXPECT_THAT(link.sent(EXTENSION), IsEmpty());
  sets(batch);
  EXPECT_THAT(link.sent(EXTENSION), ElementsAre(bytes("00 FF")));
}

TEST_F(HeadunitVerification, SetsNothingThatIsTooLongForOneMessage) {
  makeLive(SENSOR_DIAGNOSTICS);
  SensorBatch batch;
  batch.add_diagnostics_data()->set_dtc(std::string(16 * 1000, 'x'));
  sets(batch);
  EXPECT_THAT(link.sent(SENSORS), IsEmpty());
  EXPECT_THAT(link.sent(EXTENSION), ElementsAre(bytes("00 FF")));
}

TEST_F(HeadunitVerification, TellsAnInjectedValueOfASensorThatWasAskedFor) {
  makeLive(SENSOR_SPEED);
  SensorBatch batch;
  batch.add_speed_data()->set_speed_e3(5);
  sets(batch);
  EXPECT_THAT(link.sent(SENSORS), ElementsAre(message(MESSAGE_SENSOR_BATCH, bytes("1A 02 08 05"))));
  EXPECT_THAT(link.sent(EXTENSION), IsEmpty());
}

TEST_F(HeadunitVerification, KeepsAnInjectedValueUntilItsSensorIsAskedFor) {
  SensorBatch batch;
  batch.add_rpm_data()->set_rpm_e3(7);
  sets(batch);
  EXPECT_THAT(link.sent(SENSORS), IsEmpty());
  SensorRequest request;
  request.set_type(SENSOR_RPM);
  request.set_min_update_period(0);
  link.sends(SENSORS, MESSAGE_SENSOR_REQUEST, request);
  EXPECT_THAT(link.sent(SENSORS),
              ElementsAre(bytes("80 02 08 00"), message(MESSAGE_SENSOR_BATCH, bytes("22 02 08 07"))));
}

TEST_F(HeadunitVerification, SetsNoSensorIfThereIsNone) {
  asks(MESSAGE_VANTRY_VERIFICATION_SET_SENSOR, VantryVerificationSetSensor());
  EXPECT_EQ(harness().onSetSensor(VantryVerificationSetSensor()), STATUS_SUCCESS);
  EXPECT_THAT(link.sent(SENSORS), IsEmpty());
  EXPECT_THAT(link.sent(EXTENSION), IsEmpty());
}

/// Fills one sensor's record with all that a report of it can carry.
struct SensorCase {
  const char* name;
  SensorType type;
  void (*fill)(SensorBatch* batch);
};

struct HeadunitVerificationSensor : HeadunitVerification, testing::WithParamInterface<SensorCase> {};

TEST_P(HeadunitVerificationSensor, ReachesThePhoneWhole) {
  makeLive(GetParam().type);
  SensorBatch batch;
  GetParam().fill(&batch);
  sets(batch);
  const std::vector<Bytes> sent = link.sent(SENSORS);
  ASSERT_FALSE(sent.empty());
  EXPECT_EQ(sent.back(), message(MESSAGE_SENSOR_BATCH, batch));
}

void fillSatellites(SensorBatch* batch, bool placed) {
  GpsSatelliteData* const data = batch->add_gps_satellite_data();
  data->set_number_in_use(1);
  data->set_number_in_view(2);
  for (int i = 0; i < 2; ++i) {
    GpsSatellite* const one = data->add_satellites();
    one->set_prn(10 + i);
    one->set_snr_e3(20 + i);
    one->set_used_in_fix(i == 0);
    if (!placed) continue;
    one->set_azimuth_e3(30 + i);
    one->set_elevation_e3(40 + i);
  }
}

const SensorCase SENSOR_CASES[] = {
    {"Location", SENSOR_LOCATION,
     [](SensorBatch* batch) {
       LocationData* const data = batch->add_location_data();
       data->set_timestamp(1);
       data->set_latitude_e7(-2);
       data->set_longitude_e7(3);
       data->set_accuracy_e3(4);
       data->set_altitude_e2(5);
       data->set_speed_e3(6);
       data->set_bearing_e6(7);
     }},
    {"LocationAlone", SENSOR_LOCATION,
     [](SensorBatch* batch) {
       LocationData* const data = batch->add_location_data();
       data->set_timestamp(1);
       data->set_latitude_e7(2);
       data->set_longitude_e7(3);
     }},
    {"Compass", SENSOR_COMPASS,
     [](SensorBatch* batch) {
       CompassData* const data = batch->add_compass_data();
       data->set_bearing_e6(1);
       data->set_pitch_e6(-2);
       data->set_roll_e6(3);
     }},
    {"Odometer", SENSOR_ODOMETER, [](SensorBatch* batch) { batch->add_odometer_data()->set_kms_e1(9); }},
    {"Fuel", SENSOR_FUEL,
     [](SensorBatch* batch) {
       FuelData* const data = batch->add_fuel_data();
       data->set_fuel_level(1);
       data->set_range(2);
       data->set_low_fuel_warning(true);
     }},
    {"FuelRange", SENSOR_FUEL, [](SensorBatch* batch) { batch->add_fuel_data()->set_range(2); }},
    {"ParkingBrake", SENSOR_PARKING_BRAKE,
     [](SensorBatch* batch) { batch->add_parking_brake_data()->set_parking_brake(true); }},
    {"Gear", SENSOR_GEAR, [](SensorBatch* batch) { batch->add_gear_data()->set_gear(GEAR_101); }},
    {"Diagnostics", SENSOR_DIAGNOSTICS,
     [](SensorBatch* batch) { batch->add_diagnostics_data()->set_dtc(std::string("\0\x01\xFF", 3)); }},
    {"NightMode", SENSOR_NIGHT_MODE,
     [](SensorBatch* batch) { batch->add_night_mode_data()->set_night_mode(true); }},
    {"Environment", SENSOR_ENVIRONMENT,
     [](SensorBatch* batch) {
       EnvironmentData* const data = batch->add_environment_data();
       data->set_temperature_e3(-1);
       data->set_pressure_e3(2);
     }},
    {"Hvac", SENSOR_HVAC,
     [](SensorBatch* batch) {
       HvacData* const data = batch->add_hvac_data();
       data->set_target_temperature_e3(1);
       data->set_current_temperature_e3(2);
     }},
    {"DrivingStatus", SENSOR_DRIVING_STATUS,
     [](SensorBatch* batch) { batch->add_driving_status_data()->set_status(5); }},
    {"DeadReckoning", SENSOR_DEAD_RECKONING,
     [](SensorBatch* batch) {
       DeadReckoningData* const data = batch->add_dead_reckoning_data();
       data->set_steering_angle_e1(-1);
       for (int i = 0; i < 4; ++i) data->add_wheel_speed_e3(i);
     }},
    {"Passenger", SENSOR_PASSENGER,
     [](SensorBatch* batch) { batch->add_passenger_data()->set_passenger_present(true); }},
    {"Door", SENSOR_DOOR,
     [](SensorBatch* batch) {
       DoorData* const data = batch->add_door_data();
       data->set_hood_open(true);
       data->set_trunk_open(false);
       data->add_door_open(true);
       data->add_door_open(false);
     }},
    {"Light", SENSOR_LIGHT,
     [](SensorBatch* batch) {
       LightData* const data = batch->add_light_data();
       data->set_head_light_state(HEAD_LIGHT_STATE_2);
       data->set_turn_indicator_state(TURN_INDICATOR_STATE_3);
       data->set_hazard_lights_on(true);
     }},
    {"TirePressure", SENSOR_TIRE_PRESSURE,
     [](SensorBatch* batch) {
       TirePressureData* const data = batch->add_tire_pressure_data();
       for (int i = 0; i < 4; ++i) data->add_tire_pressures_e2(220 + i);
     }},
    {"Accelerometer", SENSOR_ACCELEROMETER,
     [](SensorBatch* batch) {
       AccelerometerData* const data = batch->add_accelerometer_data();
       data->set_acceleration_x_e3(1);
       data->set_acceleration_y_e3(-2);
       data->set_acceleration_z_e3(3);
     }},
    {"Gyroscope", SENSOR_GYROSCOPE,
     [](SensorBatch* batch) {
       GyroscopeData* const data = batch->add_gyroscope_data();
       data->set_rotation_speed_x_e3(1);
       data->set_rotation_speed_y_e3(-2);
       data->set_rotation_speed_z_e3(3);
     }},
    {"Satellites", SENSOR_GPS_SATELLITE, [](SensorBatch* batch) { fillSatellites(batch, true); }},
    {"SatellitesWithoutAPlace", SENSOR_GPS_SATELLITE,
     [](SensorBatch* batch) { fillSatellites(batch, false); }},
    {"NoSatellites", SENSOR_GPS_SATELLITE,
     [](SensorBatch* batch) { batch->add_gps_satellite_data()->set_number_in_use(0); }},
};

INSTANTIATE_TEST_SUITE_P(All, HeadunitVerificationSensor, testing::ValuesIn(SENSOR_CASES),
                         [](const auto& one) { return one.param.name; });

// ---- Input ----

TEST_F(HeadunitVerification, ReportsInjectedInputOfEveryKind) {
  const auto reported = [this](const InputReport& report) {
    EXPECT_EQ(injects(report), STATUS_SUCCESS);
    return link.sent(INPUT);
  };
  for (const bool isPad : {false, true}) {
    InputReport report;
    report.set_timestamp(9);
    TouchEvent* const touch = isPad ? report.mutable_touchpad_event() : report.mutable_touch_event();
    for (unsigned int i = 0; i < 2; ++i) {
      TouchEvent_Pointer* const pointer = touch->add_pointer_data();
      pointer->set_pointer_id(8 - i);
      pointer->set_x(100 + i);
      pointer->set_y(200 + i);
    }
    touch->set_action_index(1);
    touch->set_action(POINTER_ACTION_5);
    EXPECT_THAT(reported(report), ElementsAre(message(MESSAGE_INPUT_REPORT, report)));
  }
  for (const bool isLong : {false, true}) {
    InputReport report;
    report.set_timestamp(10);
    KeyEvent_Key* const key = report.mutable_key_event()->add_keys();
    key->set_keycode(4);
    key->set_down(true);
    key->set_metastate(3);
    key->set_longpress(isLong);
    EXPECT_THAT(reported(report), ElementsAre(message(MESSAGE_INPUT_REPORT, report)));
  }
  InputReport absolute;
  absolute.set_timestamp(11);
  AbsoluteEvent_Abs* const position = absolute.mutable_absolute_event()->add_data();
  position->set_keycode(19);
  position->set_value(-5);
  EXPECT_THAT(reported(absolute), ElementsAre(message(MESSAGE_INPUT_REPORT, absolute)));
  InputReport relative;
  relative.set_timestamp(12);
  RelativeEvent_Rel* const turn = relative.mutable_relative_event()->add_data();
  turn->set_keycode(19);
  turn->set_delta(-1);
  EXPECT_THAT(reported(relative), ElementsAre(message(MESSAGE_INPUT_REPORT, relative)));
}

TEST_F(HeadunitVerification, ReportsEachOfSeveralKeysAndSaysIfOneIsNotBound) {
  InputReport report;
  report.set_timestamp(1);
  for (const unsigned int code : {4U, 77U, 19U}) {
    KeyEvent_Key* const key = report.mutable_key_event()->add_keys();
    key->set_keycode(code);
    key->set_down(false);
    key->set_metastate(0);
  }
  EXPECT_EQ(injects(report), STATUS_INVALID_KEYCODE);
  EXPECT_THAT(link.sent(INPUT), testing::SizeIs(2));
}

TEST_F(HeadunitVerification, TakesInjectionsOverTheWire) {
  VantryVerificationInjectInput record;
  record.mutable_input()->set_timestamp(1);
  record.mutable_input()->mutable_touch_event();
  asks(MESSAGE_VANTRY_VERIFICATION_INJECT_INPUT, record);
  EXPECT_THAT(link.sent(INPUT), testing::SizeIs(1));
  EXPECT_THAT(link.sent(EXTENSION), IsEmpty());
}

// ---- Focus ----

TEST_F(HeadunitVerification, ForcesTheVideoFocus) {
  const auto force = [this](VideoFocusMode mode, bool deny, bool unsolicited) {
    VantryVerificationVideoFocus record;
    record.set_video_focus_mode(mode);
    record.set_deny(deny);
    record.set_unsolicited(unsolicited);
    asks(MESSAGE_VANTRY_VERIFICATION_VIDEO_FOCUS, record);
    return link.sent(VIDEO);
  };
  EXPECT_THAT(force(VIDEO_FOCUS_MODE_2, false, true), ElementsAre(bytes("80 08 08 02 10 01")));
  EXPECT_THAT(force(VIDEO_FOCUS_MODE_1, false, false), ElementsAre(bytes("80 08 08 01 10 00")));
  EXPECT_THAT(force(VIDEO_FOCUS_MODE_1, true, true), ElementsAre(bytes("80 08 08 02 10 01")));
  EXPECT_THAT(force(VIDEO_FOCUS_MODE_2, true, true), ElementsAre(bytes("80 08 08 01 10 01")));
}

TEST_F(HeadunitVerification, ForcesTheAudioFocus) {
  VantryVerificationAudioFocus record;
  record.set_audio_focus_state(AUDIO_FOCUS_STATE_3);
  record.set_channel(5);
  record.set_unsolicited(true);
  asks(MESSAGE_VANTRY_VERIFICATION_AUDIO_FOCUS, record);
  AudioFocusNotification told;
  told.set_focus_state(AUDIO_FOCUS_STATE_3);
  told.set_unsolicited(true);
  EXPECT_THAT(link.sent(0), ElementsAre(message(MESSAGE_AUDIO_FOCUS_NOTIFICATION, told)));
}

// ---- The screen ----

TEST_F(HeadunitVerification, TellsTheSizeOfTheScreen) {
  asks(MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_REQUEST,
       VantryVerificationDisplayInformationRequest());
  EXPECT_THAT(link.sent(EXTENSION), ElementsAre(bytes("80 0B 08 C0 08 10 E0 03")));
}

TEST_F(HeadunitVerification, SendsThePictureOfTheScreenFromAnotherThread) {
  requestCapture();
  waitForSlowWork();
  EXPECT_THAT(link.sent(EXTENSION), ElementsAre(bytes("80 09 0A 0A") + test::text("the screen")));
  EXPECT_NE(camera.takenOn, std::this_thread::get_id());
}

TEST_F(HeadunitVerification, AnswersEachRequestForAPictureThatWaitsForTheLastOne) {
  for (int i = 0; i < 3; ++i) {
    requestCapture();
    waitForSlowWork();
  }
  EXPECT_THAT(link.sent(EXTENSION), testing::SizeIs(3));
}

TEST_F(HeadunitVerification, RefusesARequestForAPictureWhileAnotherIsUnderWay) {
  std::promise<void> go;
  slowWork.post([&go] { go.get_future().wait(); });
  requestCapture();
  requestCapture();
  EXPECT_THAT(link.sent(EXTENSION), ElementsAre(bytes("00 FF")));
  go.set_value();
  waitForSlowWork();
  EXPECT_EQ(camera.taken, 1);
  EXPECT_THAT(link.sent(EXTENSION), testing::SizeIs(1));
}

TEST_F(HeadunitVerification, TakesPicturesAgainAfterOneThatFailed) {
  camera.whileTaking = [] { throw std::bad_alloc(); };
  requestCapture();
  waitForSlowWork();
  EXPECT_THAT(link.sent(EXTENSION), IsEmpty());
  camera.whileTaking = nullptr;
  requestCapture();
  waitForSlowWork();
  EXPECT_THAT(link.sent(EXTENSION), testing::SizeIs(1));
}

TEST_F(HeadunitVerification, TellsTheSizeOfTheScreenWhileAPictureIsTaken) {
  std::promise<void> begun;
  std::promise<void> go;
  camera.whileTaking = [&] {
    begun.set_value();
    go.get_future().wait();
  };
  requestCapture();
  begun.get_future().wait();
  asks(MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_REQUEST,
       VantryVerificationDisplayInformationRequest());
  EXPECT_THAT(link.sent(EXTENSION), ElementsAre(bytes("80 0B 08 C0 08 10 E0 03")));
  go.set_value();
  waitForSlowWork();
  EXPECT_THAT(link.sent(EXTENSION), testing::SizeIs(1));
}

TEST_F(HeadunitVerification, LooksNoMoreOnceTheLinkEnds) {
  std::promise<void> go;
  slowWork.post([&go] { go.get_future().wait(); });
  requestCapture();
  extension.release();
  go.set_value();
  waitForSlowWork();
  EXPECT_EQ(camera.taken, 0);
  EXPECT_THAT(link.sent(EXTENSION), IsEmpty());
}

TEST_F(HeadunitVerification, EndsOnlyWhenThePictureThatIsBeingTakenHasBeenSent) {
  std::promise<void> begun;
  std::promise<void> go;
  camera.whileTaking = [&] {
    begun.set_value();
    go.get_future().wait();
  };
  requestCapture();
  begun.get_future().wait();
  std::thread ending([this] { extension.release(); });
  go.set_value();
  ending.join();
  EXPECT_THAT(link.sent(EXTENSION), testing::SizeIs(1));
}

}  // namespace
}  // namespace headunit
