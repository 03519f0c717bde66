#pragma once

#include <optional>
#include <set>

#include "headunit/ClusterKeys.h"

namespace headunit {

/// The key code that a key of the keyboard stands for, by its SDL_Keycode; nothing for keys without one.
std::optional<unsigned int> keyCodeOf(int key);

/// What a key does beside the picture instead, if it does: with Alt, the arrows, Return and Backspace move
/// through what is there; F7, F8 and F9 are for calls, for what can be played, and for the radio.
std::optional<ClusterKey> clusterKeyOf(int key, bool alt);

/// All key codes that this head unit can report, its knob among them.
std::set<int> allKeyCodes();

}  // namespace headunit
