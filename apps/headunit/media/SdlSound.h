#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "headunit/Microphone.h"
#include "headunit/SoundOutput.h"

namespace headunit {

/// Plays the mix on the sound device. Null if there is none, with the reason in `*error`.
std::unique_ptr<SoundOutput> openSoundDevice(Mixer* mixer, std::string* error);

/// The microphone of the machine; null if there is none, with the reason in `*error`. It is opened only while
/// it listens.
std::unique_ptr<Microphone> findMicrophone(std::string* error);

/// Reads a WAVE file of any rate and number of channels, brought to what the microphone gives. Nothing on
/// failure, with the reason in `*error`.
std::optional<std::vector<std::int16_t>> readForMicrophone(const std::string& path, std::string* error);

}  // namespace headunit
