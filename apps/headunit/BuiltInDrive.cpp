#include "headunit/DriveScript.h"

namespace headunit {

// Every sensor once at the beginning; then from a standstill through a tunnel, where it is night, and back.
const std::string& builtInDrive() {
  static const std::string text = R"({
  "loop": true,
  "length_s": 12,
  "steps": [
    {"t_s": 0, "speed_kmh": 0, "gear": "park", "night_mode": false,
     "location": {"latitude_deg": 48.13720, "longitude_deg": 11.57550, "accuracy_m": 4, "altitude_m": 519,
                  "speed_kmh": 0, "bearing_deg": 90},
     "compass": {"bearing_deg": 90, "pitch_deg": 0.5, "roll_deg": -0.2},
     "rpm": 800, "odometer_km": 12345.6, "fuel": {"level_percent": 63, "range_km": 410, "low": false},
     "parking_brake": true, "diagnostics": [], "environment": {"temperature_c": 18.5, "pressure_kpa": 95.2},
     "hvac": {"target_c": 21, "current_c": 19.5}, "driving_status": 0,
     "dead_reckoning": {"steering_angle_deg": 0, "wheel_speeds_kmh": [0, 0, 0, 0]}, "passenger": true,
     "doors": {"hood": false, "trunk": false, "open": [false, false, false, false]},
     "lights": {"head": "off", "indicator": "off", "hazard": false}, "tires_kpa": [240, 240, 250, 250],
     "accelerometer_mps2": {"x": 0, "y": 0, "z": 9.81}, "gyroscope_radps": {"x": 0, "y": 0, "z": 0},
     "satellites": [
       {"prn": 3, "snr_db": 41.5, "used": true, "azimuth_deg": 120, "elevation_deg": 55},
       {"prn": 17, "snr_db": 33, "used": true, "azimuth_deg": 250.5, "elevation_deg": 30},
       {"prn": 22, "snr_db": 12, "used": false, "azimuth_deg": 10, "elevation_deg": 8}]},
    {"t_s": 1, "gear": "drive", "parking_brake": false, "driving_status": 1,
     "lights": {"indicator": "left"}},
    {"t_s": 2, "speed_kmh": 15, "rpm": 1700, "accelerometer_mps2": {"x": 0, "y": 2.1, "z": 9.8},
     "lights": {"indicator": "off"},
     "location": {"latitude_deg": 48.13721, "longitude_deg": 11.57564, "speed_kmh": 15, "bearing_deg": 90}},
    {"t_s": 3, "speed_kmh": 30, "rpm": 2300,
     "location": {"latitude_deg": 48.13722, "longitude_deg": 11.57605, "speed_kmh": 30, "bearing_deg": 90}},
    {"t_s": 4, "speed_kmh": 50, "rpm": 2100, "accelerometer_mps2": {"x": 0, "y": 0, "z": 9.81},
     "dead_reckoning": {"steering_angle_deg": 0, "wheel_speeds_kmh": [50, 50, 50, 50]},
     "location": {"latitude_deg": 48.13723, "longitude_deg": 11.57690, "speed_kmh": 50, "bearing_deg": 90}},
    {"t_s": 5, "night_mode": true, "lights": {"head": "on"},
     "location": {"latitude_deg": 48.13724, "longitude_deg": 11.57877, "speed_kmh": 50, "bearing_deg": 90}},
    {"t_s": 6, "speed_kmh": 48, "rpm": 2000, "gyroscope_radps": {"x": 0, "y": 0, "z": 0.12},
     "dead_reckoning": {"steering_angle_deg": -14.5, "wheel_speeds_kmh": [47, 49, 47, 49]},
     "compass": {"bearing_deg": 97}},
    {"t_s": 7, "night_mode": false, "lights": {"head": "off"},
     "location": {"latitude_deg": 48.13718, "longitude_deg": 11.58062, "speed_kmh": 48, "bearing_deg": 97}},
    {"t_s": 8, "speed_kmh": 35, "rpm": 1500, "gyroscope_radps": {"x": 0, "y": 0, "z": 0},
     "accelerometer_mps2": {"x": 0, "y": -3.4, "z": 9.8}, "odometer_km": 12345.7},
    {"t_s": 9, "speed_kmh": 12, "rpm": 1000,
     "location": {"latitude_deg": 48.13713, "longitude_deg": 11.58143, "speed_kmh": 12, "bearing_deg": 97}},
    {"t_s": 10, "speed_kmh": 0, "rpm": 800, "gear": "reverse", "lights": {"indicator": "right"}},
    {"t_s": 11, "gear": "neutral", "parking_brake": true, "driving_status": 0, "lights": {"indicator": "off"}}
  ]
}
)";
  return text;
}

}  // namespace headunit
