#pragma once

#include <optional>
#include <set>

namespace headunit {

/// The key code that a key of the keyboard stands for, by its SDL_Keycode; nothing for keys without one.
std::optional<unsigned int> keyCodeOf(int key);

/// All key codes that this head unit can report, its knob among them.
std::set<int> allKeyCodes();

}  // namespace headunit
