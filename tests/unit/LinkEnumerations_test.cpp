#include "enumerations.h"

// The enumerations of the link itself, of the streams, of the sensors and of the input.

namespace test {
namespace {

struct LinkEnumerations : EnumerationTest {};

TEST_P(LinkEnumerations, HasTheseNumbersAndNoOther) { expectTheseNumbersAndNoOther(); }

const Enumeration CONTROL[] = {
    {"DriverPosition",
     DriverPosition_IsValid,
     {{DRIVER_POSITION_0, 0}, {DRIVER_POSITION_1, 1}, {DRIVER_POSITION_2, 2}}},
    {"ByeByeReason", ByeByeReason_IsValid, {{BYE_BYE_REASON_1, 1}}},
    {"NavFocusType", NavFocusType_IsValid, {{NAV_FOCUS_1, 1}, {NAV_FOCUS_2, 2}}},
    {"VoiceSessionStatus", VoiceSessionStatus_IsValid, {{VOICE_SESSION_1, 1}, {VOICE_SESSION_2, 2}}},
    {"AudioFocusRequestType",
     AudioFocusRequestType_IsValid,
     {{AUDIO_FOCUS_GAIN, 1},
      {AUDIO_FOCUS_GAIN_TRANSIENT, 2},
      {AUDIO_FOCUS_GAIN_TRANSIENT_MAY_DUCK, 3},
      {AUDIO_FOCUS_RELEASE, 4}}},
    {"AudioFocusStateType",
     AudioFocusStateType_IsValid,
     {{AUDIO_FOCUS_STATE_1, 1},
      {AUDIO_FOCUS_STATE_2, 2},
      {AUDIO_FOCUS_STATE_3, 3},
      {AUDIO_FOCUS_STATE_4, 4},
      {AUDIO_FOCUS_STATE_5, 5},
      {AUDIO_FOCUS_STATE_6, 6},
      {AUDIO_FOCUS_STATE_7, 7}}},
};

const Enumeration STREAMS[] = {
    {"MediaCodecType",
     MediaCodecType_IsValid,
     {{MEDIA_CODEC_1, 1}, {MEDIA_CODEC_2, 2}, {MEDIA_CODEC_VIDEO, 3}, {MEDIA_CODEC_4, 4}}},
    {"AudioStreamType",
     AudioStreamType_IsValid,
     {{AUDIO_STREAM_GUIDANCE, 1},
      {AUDIO_STREAM_SYSTEM_AUDIO, 2},
      {AUDIO_STREAM_MEDIA, 3},
      {AUDIO_STREAM_TELEPHONY, 4}}},
    {"VideoCodecResolutionType",
     VideoCodecResolutionType_IsValid,
     {{VIDEO_800x480, 1}, {VIDEO_1280x720, 2}, {VIDEO_1920x1080, 3}}},
    {"VideoFrameRateType", VideoFrameRateType_IsValid, {{VIDEO_FPS_60, 1}, {VIDEO_FPS_30, 2}}},
    {"VideoFocusMode", VideoFocusMode_IsValid, {{VIDEO_FOCUS_MODE_1, 1}, {VIDEO_FOCUS_MODE_2, 2}}},
    {"VideoFocusReason",
     VideoFocusReason_IsValid,
     {{VIDEO_FOCUS_REASON_0, 0}, {VIDEO_FOCUS_REASON_1, 1}, {VIDEO_FOCUS_REASON_2, 2}}},
    {"ConfigStatus", Config_Status_IsValid, {{Config::STATUS_WAIT, 1}, {Config::STATUS_READY, 2}}},
    {"MediaMessageId",
     MediaMessageId_IsValid,
     {{MESSAGE_MEDIA_DATA, 0},
      {MESSAGE_CODEC_CONFIG, 1},
      {MESSAGE_SETUP, 0x8000},
      {MESSAGE_START, 0x8001},
      {MESSAGE_STOP, 0x8002},
      {MESSAGE_CONFIG, 0x8003},
      {MESSAGE_ACK, 0x8004},
      {MESSAGE_MICROPHONE_REQUEST, 0x8005},
      {MESSAGE_MICROPHONE_RESPONSE, 0x8006},
      {MESSAGE_VIDEO_FOCUS_REQUEST_NOTIFICATION, 0x8007},
      {MESSAGE_VIDEO_FOCUS_NOTIFICATION, 0x8008}}},
};

const Enumeration CAR[] = {
    {"SensorType", SensorType_IsValid, {{SENSOR_LOCATION, 1},        {SENSOR_COMPASS, 2},
                                        {SENSOR_SPEED, 3},           {SENSOR_RPM, 4},
                                        {SENSOR_ODOMETER, 5},        {SENSOR_FUEL, 6},
                                        {SENSOR_PARKING_BRAKE, 7},   {SENSOR_GEAR, 8},
                                        {SENSOR_DIAGNOSTICS, 9},     {SENSOR_NIGHT_MODE, 10},
                                        {SENSOR_ENVIRONMENT, 11},    {SENSOR_HVAC, 12},
                                        {SENSOR_DRIVING_STATUS, 13}, {SENSOR_DEAD_RECKONING, 14},
                                        {SENSOR_PASSENGER, 15},      {SENSOR_DOOR, 16},
                                        {SENSOR_LIGHT, 17},          {SENSOR_TIRE_PRESSURE, 18},
                                        {SENSOR_ACCELEROMETER, 19},  {SENSOR_GYROSCOPE, 20},
                                        {SENSOR_GPS_SATELLITE, 21}}},
    {"Gear",
     Gear_IsValid,
     {{GEAR_0, 0},
      {GEAR_1, 1},
      {GEAR_2, 2},
      {GEAR_3, 3},
      {GEAR_4, 4},
      {GEAR_5, 5},
      {GEAR_6, 6},
      {GEAR_100, 100},
      {GEAR_101, 101},
      {GEAR_102, 102}}},
    {"HeadLightState",
     HeadLightState_IsValid,
     {{HEAD_LIGHT_STATE_1, 1}, {HEAD_LIGHT_STATE_2, 2}, {HEAD_LIGHT_STATE_3, 3}}},
    {"TurnIndicatorState",
     TurnIndicatorState_IsValid,
     {{TURN_INDICATOR_STATE_1, 1}, {TURN_INDICATOR_STATE_2, 2}, {TURN_INDICATOR_STATE_3, 3}}},
    {"SensorMessageId",
     SensorMessageId_IsValid,
     {{MESSAGE_SENSOR_REQUEST, 0x8001}, {MESSAGE_SENSOR_RESPONSE, 0x8002}, {MESSAGE_SENSOR_BATCH, 0x8003}}},
    {"PointerAction",
     PointerAction_IsValid,
     {{POINTER_ACTION_0, 0},
      {POINTER_ACTION_1, 1},
      {POINTER_ACTION_2, 2},
      {POINTER_ACTION_5, 5},
      {POINTER_ACTION_6, 6}}},
    {"InputMessageId",
     InputMessageId_IsValid,
     {{MESSAGE_INPUT_REPORT, 0x8001},
      {MESSAGE_KEY_BINDING_REQUEST, 0x8002},
      {MESSAGE_KEY_BINDING_RESPONSE, 0x8003}}},
};

INSTANTIATE_TEST_SUITE_P(Control, LinkEnumerations, testing::ValuesIn(CONTROL), nameOf);
INSTANTIATE_TEST_SUITE_P(Streams, LinkEnumerations, testing::ValuesIn(STREAMS), nameOf);
INSTANTIATE_TEST_SUITE_P(Car, LinkEnumerations, testing::ValuesIn(CAR), nameOf);

}  // namespace
}  // namespace test
