#include "headunit/media/KeyMap.h"

#include <SDL.h>

#include <map>

#include "headunit/Controls.h"

namespace headunit {
namespace {

constexpr unsigned int DIGITS = 7;    // 0 to 9 in a row
constexpr unsigned int LETTERS = 29;  // A to Z in a row

std::map<int, unsigned int> makeKeys() {
  std::map<int, unsigned int> keys = {
      {SDLK_HOME, 3},       {SDLK_ESCAPE, 4},     {SDLK_F5, 5},           {SDLK_F6, 6},
      {SDLK_UP, 19},        {SDLK_DOWN, 20},      {SDLK_LEFT, 21},        {SDLK_RIGHT, 22},
      {SDLK_KP_ENTER, 23},  {SDLK_VOLUMEUP, 24},  {SDLK_VOLUMEDOWN, 25},  {SDLK_COMMA, 55},
      {SDLK_PERIOD, 56},    {SDLK_TAB, 61},       {SDLK_SPACE, 62},       {SDLK_RETURN, 66},
      {SDLK_BACKSPACE, 67}, {SDLK_F1, 82},        {SDLK_F3, 84},          {SDLK_AUDIOPLAY, 85},
      {SDLK_AUDIOSTOP, 86}, {SDLK_AUDIONEXT, 87}, {SDLK_AUDIOPREV, 88},   {SDLK_PAGEUP, 92},
      {SDLK_PAGEDOWN, 93},  {SDLK_DELETE, 112},   {SDLK_AUDIOMUTE, 164},  {SDLK_BACKQUOTE, 68},
      {SDLK_MINUS, 69},     {SDLK_EQUALS, 70},    {SDLK_LEFTBRACKET, 71}, {SDLK_RIGHTBRACKET, 72},
      {SDLK_BACKSLASH, 73}, {SDLK_SEMICOLON, 74}, {SDLK_QUOTE, 75},       {SDLK_SLASH, 76},
      {SDLK_AT, 77},        {SDLK_PLUS, 81},      {SDLK_END, 123},        {SDLK_INSERT, 124},
      {SDLK_F2, 132},       {SDLK_F4, 134},       {SDLK_F10, 140},        {SDLK_F11, 141},
      {SDLK_F12, 142}};
  for (int i = 0; i < 10; ++i) keys[SDLK_0 + i] = DIGITS + static_cast<unsigned int>(i);
  for (int i = 0; i < 26; ++i) keys[SDLK_a + i] = LETTERS + static_cast<unsigned int>(i);
  return keys;
}

const std::map<int, unsigned int>& keys() {
  static const std::map<int, unsigned int> map = makeKeys();
  return map;
}

}  // namespace

std::optional<unsigned int> keyCodeOf(int key) {
  const auto found = keys().find(key);
  if (found == keys().end()) return {};
  return found->second;
}

std::optional<ClusterKey> clusterKeyOf(int key, bool alt) {
  switch (key) {
    case SDLK_F7: return ClusterKey::call;
    case SDLK_F8: return ClusterKey::browser;
    case SDLK_F9: return ClusterKey::radio;
    default: break;
  }
  if (!alt) return {};
  switch (key) {
    case SDLK_UP: return ClusterKey::up;
    case SDLK_DOWN: return ClusterKey::down;
    case SDLK_LEFT: return ClusterKey::left;
    case SDLK_RIGHT: return ClusterKey::right;
    case SDLK_RETURN: return ClusterKey::enter;
    case SDLK_BACKSPACE: return ClusterKey::back;
    default: return {};
  }
}

std::set<int> allKeyCodes() {
  std::set<int> codes = {static_cast<int>(KNOB)};
  for (const auto& [key, code] : keys()) codes.insert(static_cast<int>(code));
  return codes;
}

}  // namespace headunit
